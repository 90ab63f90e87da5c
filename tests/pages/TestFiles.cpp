// SPDX-License-Identifier: MIT
#include "TestFiles.h"

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

const std::string kSquare = "1 0 0 rg 10 10 50 50 re f";

// Objects numbered from 1, the first one the catalog.
void Write(const std::filesystem::path& path, const std::vector<std::string>& objects) {
    std::string text = "%PDF-1.4\n", table;
    for (size_t i = 0; i < objects.size(); ++i) {
        char row[32];
        std::snprintf(row, sizeof row, "%010zu 00000 n \n", text.size());
        table += row;
        text += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::string count = std::to_string(objects.size() + 1);
    const std::string start = std::to_string(text.size());
    std::ofstream(path, std::ios::binary) << text << "xref\n0 " << count << "\n0000000000 65535 f \n"
                                          << table << "trailer<</Size " << count << "/Root 1 0 R>>\nstartxref\n"
                                          << start << "\n%%EOF\n";
}

std::string Stream(const std::string& entries, const std::string& content) {
    return "<<" + entries + "/Length " + std::to_string(content.size()) + ">>stream\n" + content + "\nendstream";
}

std::string Reference(size_t object) { return std::to_string(object) + " 0 R"; }

// With the form as its resource X, or without any when that is 0.
std::string Page(size_t contents, size_t form) {
    const std::string resources = form ? "/XObject<</X " + Reference(form) + ">>" : "";
    return "<</Type/Page/Parent 2 0 R/MediaBox[0 0 100 100]/Resources<<" + resources + ">>/Contents " +
           Reference(contents) + ">>";
}

// `depth` forms; each draws the next by `content`, the last one is the square. They are the last objects.
void AddForms(std::vector<std::string>& objects, int depth, const std::string& content) {
    const std::string form = "/Type/XObject/Subtype/Form/BBox[0 0 100 100]";
    for (int i = 1; i < depth; ++i)
        objects.push_back(Stream(form + "/Resources<</XObject<</X " + Reference(objects.size() + 2) + ">>>>", content));
    objects.push_back(Stream(form, kSquare));
}

} // namespace

void WritePage(const std::filesystem::path& path, int side, const std::string& content, const std::string& resources,
               const std::string& entries, const std::vector<std::string>& objects) {
    const std::string length = std::to_string(side);
    std::vector<std::string> all{"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Count 1/Kids[3 0 R]>>",
                                 "<</Type/Page/Parent 2 0 R/MediaBox[0 0 " + length + " " + length + "]/Resources<<" +
                                     resources + ">>/Contents 4 0 R" + entries + ">>",
                                 Stream("", content)};
    all.insert(all.end(), objects.begin(), objects.end());
    Write(path, all);
}

std::string Form(int side, const std::string& content, const std::string& resources, const std::string& group) {
    const std::string length = std::to_string(side);
    return Stream("/Type/XObject/Subtype/Form/BBox[0 0 " + length + " " + length + "]/Resources<<" + resources + ">>" +
                      (group.empty() ? "" : "/Group<</S/Transparency" + group + ">>"),
                  content);
}

void WriteKillingFile(const std::filesystem::path& path) {
    std::vector<std::string> objects{"<</Type/Catalog/Pages 2 0 R>>",
                                     "<</Type/Pages/Count 3/Kids[3 0 R 4 0 R 5 0 R]>>",
                                     Page(6, 0),
                                     Page(7, 8),
                                     Page(6, 0),
                                     Stream("", kSquare),
                                     Stream("", "/X Do")};
    AddForms(objects, 3000, "/X Do");
    Write(path, objects);
}

void WriteEndlessFile(const std::filesystem::path& path) {
    std::vector<std::string> objects{"<</Type/Catalog/Pages 2 0 R>>",
                                     "<</Type/Pages/Count 2/Kids[3 0 R 4 0 R]>>",
                                     Page(5, 0),
                                     Page(6, 7),
                                     Stream("", kSquare),
                                     Stream("", "/X Do")};
    AddForms(objects, 29, "/X Do /X Do");
    Write(path, objects);
}

PdfPage::Picture DrawFile(const std::string& file, bool adjust) {
    PdfPage::Report report(false);
    PdfPage::Document document(file, report);
    PdfPage::Picture picture;
    PdfPage::Page(document, 1, 72, adjust).Draw(&picture, nullptr);
    report.EndPage();
    return picture;
}
