// SPDX-License-Identifier: MIT
// Prints recorded pages and holds the paper against the pixels that the same calls leave in a bitmap.
//
//   print_pages metafile PAGE.gxr...       through an enhanced metafile, played back
//   print_pages print PPD DIR PAGE.gxr...  to DIR/PAGE.ps, on a PostScript printer that is made for it
//   print_pages compare DIR PAGE.gxr...    DIR/PAGE.ppm, the paper, with the page
//
// With GX_PICTURES set to a folder every compared pair is left there as PPM files.
#include "Recording.h"

#include "TestPrinter.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

using Gxr::Error;
using Gxr::Handle;

// Cells of 8 x 8 pixels are compared by their mean colours. GDI+ of Wine does not smooth edges and rounds coordinates
// to whole pixels: stems of small text at 96 dots per inch become one or two pixels wide, which is worth up to 5 levels
// on a dense page; and it takes the corners of pixels for their centres, which moves textures by half a pixel. Both
// stay inside a cell or change it by less than a fifth. A missing object, a wrong colour or a wrong place does not.
constexpr int kCell = 8;
constexpr double kMean = 5.0;   // of 255, over all cells
constexpr double kWrong = 48.0; // of 255: a cell is wrong
constexpr double kWrongCells = 0.002;

struct Picture {
    uint32_t width = 0, height = 0;
    std::vector<uint32_t> pixels; // 0xRRGGBB
    Picture(uint32_t w, uint32_t h) : width(w), height(h), pixels(static_cast<size_t>(w) * h) {}
};

void Check(bool good, const char* what) {
    if (!good)
        throw Error(std::string(what) + " failed, error " + std::to_string(GetLastError()));
}

std::string NameOf(const std::string& page) {
    const size_t at = page.find_last_of("/\\");
    const std::string file = at == std::string::npos ? page : page.substr(at + 1);
    return file.substr(0, file.find('.'));
}

float ScaleFor(const Gxr::PageInfo& page, float width, float height) {
    return std::min(width / static_cast<float>(page.width), height / static_cast<float>(page.height));
}

uint32_t Length(uint32_t length, float scale) { return static_cast<uint32_t>(static_cast<float>(length) * scale); }

// What the screen shows.
Picture OnScreen(const Gxr::Recording& recording, float scale) {
    Picture picture(Length(recording.Page().width, scale), Length(recording.Page().height, scale));
    std::fill(picture.pixels.begin(), picture.pixels.end(), 0xFFFFFFFFu);
    const GXExtBufLayout layout{static_cast<float>(picture.width), static_cast<float>(picture.height),
                                static_cast<float>(picture.width) * 4, 96.0f, 96.0f};
    Handle<GXRenderTarget> target;
    Check(GXCreateRenderTargetExtBuf(picture.pixels.data(), GXPixelFormatBGRX32, &layout, target.Out()) == 0,
          "GXCreateRenderTargetExtBuf");
    Gxr::Player(recording).Play(target.Get(), scale);
    return picture;
}

void PrintOn(HDC dc, const Gxr::Recording& recording, float scale) {
    Handle<GXRenderTarget> target;
    Check(GXCreateRenderTargetPrintDC(dc, target.Out()) == GXResultSuccess, "GXCreateRenderTargetPrintDC");
    Gxr::Player(recording).Play(target.Get(), scale);
}

void Save(const Picture& picture, const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    Check(file != nullptr, "opening a picture");
    std::fprintf(file, "P6\n%u %u\n255\n", picture.width, picture.height);
    for (const uint32_t p : picture.pixels) {
        const unsigned char rgb[3] = {static_cast<unsigned char>(p >> 16), static_cast<unsigned char>(p >> 8),
                                      static_cast<unsigned char>(p)};
        std::fwrite(rgb, 1, 3, file);
    }
    std::fclose(file);
}

bool Compare(const std::string& name, const Picture& screen, const Picture& paper) {
    double sum = 0, worst = 0;
    size_t cells = 0, wrong = 0;
    for (uint32_t top = 0; top + kCell <= screen.height; top += kCell) {
        for (uint32_t left = 0; left + kCell <= screen.width; left += kCell, ++cells) {
            int difference[3] = {};
            for (uint32_t y = top; y < top + kCell; ++y) {
                for (uint32_t x = left; x < left + kCell; ++x) {
                    const uint32_t a = screen.pixels[static_cast<size_t>(y) * screen.width + x];
                    const uint32_t b = paper.pixels[static_cast<size_t>(y) * paper.width + x];
                    for (int c = 0; c < 3; ++c)
                        difference[c] += static_cast<int>(a >> (8 * c) & 255) - static_cast<int>(b >> (8 * c) & 255);
                }
            }
            double most = 0;
            for (const int d : difference) {
                sum += std::abs(d) / (3.0 * kCell * kCell);
                most = std::max(most, std::abs(d) / static_cast<double>(kCell * kCell));
            }
            worst = std::max(worst, most);
            wrong += most > kWrong;
        }
    }
    const double mean = sum / static_cast<double>(cells);
    const double share = static_cast<double>(wrong) / static_cast<double>(cells);
    const bool good = mean <= kMean && share <= kWrongCells;
    std::printf("%-24s %4u x %4u  mean %.2f  worst cell %.0f  wrong cells %.2f %%%s\n", name.c_str(), screen.width,
                screen.height, mean, worst, 100 * share, good ? "" : "  <- TOO FAR");
    if (const char* folder = std::getenv("GX_PICTURES")) {
        Save(screen, std::string(folder) + "/" + name + ".screen.ppm");
        Save(paper, std::string(folder) + "/" + name + ".paper.ppm");
    }
    return good;
}

// A printed page as it comes out of a metafile that was recorded for the display.
Picture ThroughMetafile(const Gxr::Recording& recording, const Picture& screen, float scale) {
    const HDC display = GetDC(nullptr);
    const auto frame = [&](uint32_t pixels, int millimetres, int count) { // in hundredths of a millimetre
        return static_cast<LONG>(
            std::lround(100.0 * pixels * GetDeviceCaps(display, millimetres) / GetDeviceCaps(display, count)));
    };
    const RECT bounds{0, 0, frame(screen.width, HORZSIZE, HORZRES), frame(screen.height, VERTSIZE, VERTRES)};
    const HDC dc = CreateEnhMetaFileW(display, nullptr, &bounds, nullptr);
    ReleaseDC(nullptr, display);
    Check(dc != nullptr, "CreateEnhMetaFile");
    PrintOn(dc, recording, scale);
    const HENHMETAFILE file = CloseEnhMetaFile(dc);
    Check(file != nullptr, "CloseEnhMetaFile");

    Picture paper(screen.width, screen.height);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = static_cast<LONG>(paper.width);
    info.bmiHeader.biHeight = -static_cast<LONG>(paper.height);
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    const HDC memory = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    std::memset(pixels, 0xFF, paper.pixels.size() * 4);
    const RECT place{0, 0, static_cast<LONG>(paper.width), static_cast<LONG>(paper.height)};
    Check(PlayEnhMetaFile(memory, file, &place), "PlayEnhMetaFile");
    GdiFlush();
    std::memcpy(paper.pixels.data(), pixels, paper.pixels.size() * 4);
    SelectObject(memory, before);
    DeleteDC(memory);
    DeleteObject(bitmap);
    DeleteEnhMetaFile(file);
    return paper;
}

bool Metafile(const std::string& page) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(page);
    const HDC display = GetDC(nullptr);
    const float scale = ScaleFor(recording.Page(), static_cast<float>(GetDeviceCaps(display, HORZRES)),
                                 static_cast<float>(GetDeviceCaps(display, VERTRES)));
    ReleaseDC(nullptr, display);
    const Picture screen = OnScreen(recording, scale);
    return Compare(NameOf(page), screen, ThroughMetafile(recording, screen, scale));
}

constexpr const wchar_t* kPrinter = TestPrinter::kName;
// The paper of the PPD, whatever the driver makes of its margins.
constexpr float kPaperWidth = 1190, kPaperHeight = 1684;

void Print(const std::string& page, const std::string& folder) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(page);
    const HDC dc = CreateDCW(nullptr, kPrinter, nullptr, nullptr);
    Check(dc != nullptr, "CreateDC");
    const auto start = std::chrono::steady_clock::now();
    const std::wstring file = TestPrinter::PathOf(folder + "/" + NameOf(page) + ".ps");
    DOCINFOW document{};
    document.cbSize = sizeof document;
    document.lpszDocName = L"page";
    document.lpszOutput = file.c_str();
    Check(StartDocW(dc, &document) > 0 && StartPage(dc) > 0, "StartDoc");
    PrintOn(dc, recording, ScaleFor(recording.Page(), kPaperWidth, kPaperHeight));
    Check(EndPage(dc) > 0 && EndDoc(dc) > 0, "EndDoc");
    std::printf("%-24s on %d x %d pixels, %d dpi, alpha %#x: %.1f s\n", NameOf(page).c_str(),
                GetDeviceCaps(dc, HORZRES), GetDeviceCaps(dc, VERTRES), GetDeviceCaps(dc, LOGPIXELSX),
                GetDeviceCaps(dc, SHADEBLENDCAPS),
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    DeleteDC(dc);
}

Picture ReadPaper(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    Check(file != nullptr, path.c_str());
    char line[128];
    unsigned width = 0, height = 0;
    Check(std::fgets(line, sizeof line, file) != nullptr && std::strncmp(line, "P6", 2) == 0, "reading P6");
    do {
        Check(std::fgets(line, sizeof line, file) != nullptr, "reading the size");
    } while (line[0] == '#');
    Check(std::sscanf(line, "%u %u", &width, &height) == 2 && std::fgets(line, sizeof line, file) != nullptr,
          "reading the size");
    Picture picture(width, height);
    for (uint32_t& p : picture.pixels) {
        unsigned char rgb[3];
        Check(std::fread(rgb, 1, 3, file) == 3, "reading pixels");
        p = static_cast<uint32_t>(rgb[0] << 16 | rgb[1] << 8 | rgb[2]);
    }
    std::fclose(file);
    return picture;
}

bool ComparePaper(const std::string& page, const std::string& folder) {
    const Gxr::Recording recording = Gxr::Recording::FromFile(page);
    const Picture screen = OnScreen(recording, ScaleFor(recording.Page(), kPaperWidth, kPaperHeight));
    const Picture paper = ReadPaper(folder + "/" + NameOf(page) + ".ppm");
    Check(paper.width >= screen.width && paper.height >= screen.height, "the size of the paper");
    return Compare(NameOf(page), screen, paper);
}

int Run(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    const int first = command == "metafile" ? 2 : command == "compare" ? 3 : command == "print" ? 4 : argc;
    if (first >= argc)
        throw Error("usage: print_pages metafile|print PPD DIR|compare DIR PAGE.gxr...");
    GXLogSetSink(
        1, [](void*, const char* text) { std::fprintf(stderr, "%s\n", text); }, nullptr);
    if (command == "print")
        Check(TestPrinter::Install(TestPrinter::PathOf(argv[2])), "installing the printer");
    bool good = true;
    for (int i = first; i < argc; ++i) {
        if (command == "print")
            Print(argv[i], argv[3]);
        else
            good = (command == "metafile" ? Metafile(argv[i]) : ComparePaper(argv[i], argv[2])) && good;
        std::fflush(stdout);
    }
    return good ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "print_pages: %s\n", failure.what());
        return 2;
    }
}
