// SPDX-License-Identifier: MIT
#include "LocalRun.h"

#include "../PageRenderer.h"
#include "DrawPage.h"
#include "NewFile.h"
#include "ProcessPool.h"
#include "RunReport.h"
#include "StopSignals.h"
#include "Survey.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

namespace PdfPage {
namespace {

// A page under way: its picture belongs to this process, which names it or throws it away; the child only fills it.
struct UnderWay {
    Survey::Item item;
    std::unique_ptr<NewFile> picture;
};

class ManyPages {
public:
    explicit ManyPages(const CommandLine& line)
        : m_line(line), m_folder(Folder::Make(line.folder.empty() ? "." : line.folder)), m_survey(line, m_failures) {
        NewFile::Sweep(line.folder.empty() ? "." : line.folder);
        m_tally.all = m_survey.Count();
    }

    int Run() {
        bool more = true;
        while (!StopSignals::Asked() && (more || m_pool.Running() > 0)) {
            while (more && m_pool.Running() < m_line.jobs)
                more = StartNext();
            if (const auto ended = m_pool.Wait(100))
                End(*ended);
            m_progress.Show(m_tally);
        }
        return EndRun(m_progress, m_tally, m_failures, m_survey.Files().size());
    }

private:
    // False when there are no more.
    bool StartNext() {
        Survey::Item item;
        if (StopSignals::Asked() || !m_survey.Next(item))
            return false;
        const std::string name = m_survey.Name(item);
        if (m_line.resume && m_folder.Size(name).value_or(0) > 0) {
            ++m_tally.skipped;
            m_progress.Show(m_tally);
            return true;
        }
        try {
            const PageJob job{m_survey.Files()[item.file], item.page, m_line.dpi, name, m_line.limits, m_line.adjust};
            auto picture = std::make_unique<NewFile>(m_folder, name);
            m_pool.Start(m_ticket, job.limits, [&]() -> std::string {
                DrawPage(job, Descriptor(), picture->Stream(), m_line.verbose);
                return "";
            });
            m_underWay.emplace(m_ticket++, UnderWay{item, std::move(picture)});
        } catch (const Failure& failure) {
            Fail(item, failure.what());
        }
        return true;
    }

    void End(const ProcessPool::Ended& ended) {
        const auto place = m_underWay.find(ended.ticket);
        const UnderWay page = std::move(place->second);
        m_underWay.erase(place);
        if (!ended.outcome.said.empty()) {
            m_progress.Clear();
            PrintSaid(ended.outcome.said, m_survey.Files()[page.item.file], page.item.page);
        }
        if (ended.outcome.kind != Outcome::Kind::Done)
            Fail(page.item, ended.outcome.text);
        else if (!page.picture->Publish(false))
            Fail(page.item, "cannot write '" + m_survey.Name(page.item) + "': " + std::strerror(errno));
        else
            ++m_tally.done;
    }

    void Fail(const Survey::Item& item, const std::string& reason) {
        ++m_tally.failed;
        m_failures.AddPage(reason, m_survey.Files()[item.file], item.page);
    }

    const CommandLine& m_line;
    const Folder m_folder;
    Failures m_failures;
    Survey m_survey;
    Tally m_tally;
    Progress m_progress;
    std::map<size_t, UnderWay> m_underWay;
    size_t m_ticket = 0;
    ProcessPool m_pool; // ends before the pictures that it fills
};

// Draws the job into the stream in a process of its own.
Outcome DrawAlone(const PageJob& job, std::FILE* stream, const CommandLine& line) {
    ProcessPool pool;
    pool.Start(0, job.limits, [&]() -> std::string {
        DrawPage(job, Descriptor(), stream, line.verbose, line.threads);
        return "";
    });
    while (!StopSignals::Asked())
        if (auto ended = pool.Wait(1000))
            return ended->outcome;
    return {Outcome::Kind::Failed, "stopped", ""};
}

} // namespace

int DrawOnePage(const CommandLine& line) {
    const StopSignals signals;
    PageJob job{line.files[0], line.page, line.dpi, line.picture, line.limits, line.adjust};
    if (job.output.empty())
        job.output = PageNames(line.files).Of(0, line.page);
    std::error_code error;
    std::filesystem::path place = job.output;
    if (std::filesystem::is_symlink(place, error))
        place = std::filesystem::weakly_canonical(place, error);

    Outcome outcome;
    bool written = true;
    if (const auto status = std::filesystem::status(place, error);
        std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        const FilePointer stream(std::fopen(place.c_str(), "wb")); // a pipe or a device takes the bytes as they come
        if (!stream)
            throw Failure("cannot write '" + job.output + "': " + std::strerror(errno));
        outcome = DrawAlone(job, stream.get(), line);
    } else {
        std::optional<Folder> folder;
        try {
            folder = Folder::Open(place.has_parent_path() ? place.parent_path().string() : ".");
        } catch (const Failure& failure) {
            throw Failure("cannot write '" + job.output + "': " + failure.what());
        }
        NewFile picture(*folder, place.filename().string());
        outcome = DrawAlone(job, picture.Stream(), line);
        written = outcome.kind != Outcome::Kind::Done || picture.Publish(false);
    }
    std::fputs(outcome.said.c_str(), stderr);
    if (!written)
        throw Failure("cannot write '" + job.output + "': " + std::strerror(errno));
    if (outcome.kind != Outcome::Kind::Done)
        throw Failure(outcome.text);
    return 0;
}

int DrawManyPages(const CommandLine& line) {
    const StopSignals signals;
    return ManyPages(line).Run();
}

} // namespace PdfPage
