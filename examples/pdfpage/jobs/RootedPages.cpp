// SPDX-License-Identifier: MIT
#include "RootedPages.h"

#include "../PageRenderer.h"
#include "DrawPage.h"
#include "NewFile.h"
#include "PageRecord.h"
#include "ProcessPool.h"
#include "RunReport.h"

#include <cerrno>
#include <cstring>

namespace PdfPage {
namespace {

// Only pictures are written: a job can't overwrite a document, or a record.
bool IsPictureName(const std::string& name) {
    const std::string end = ".png";
    return name.size() > end.size() && name[0] != '.' && name.compare(name.size() - end.size(), end.size(), end) == 0;
}

Outcome DrawUnderLimits(const PageJob& job, Descriptor input, const NewFile& picture, const Limits& limits,
                        bool verbose, const std::function<void()>& alive) {
    ProcessPool pool(true);
    pool.Start(0, limits, [&]() -> std::string {
        DrawPage(job, std::move(input), picture.Stream(), verbose);
        return "";
    });
    for (;;) {
        alive();
        if (auto ended = pool.Wait(1000))
            return ended->outcome;
    }
}

} // namespace

RootedPages::RootedPages(const std::string& root, const Limits& limits, bool verbose)
    : m_root(Folder::Open(root)), m_limits(limits), m_verbose(verbose) {}

RootedPages::Result RootedPages::Draw(const PageJob& job, const std::function<void()>& alive) const {
    std::vector<std::string> parts = Folder::Parts(job.output);
    if (parts.empty() || !IsPictureName(parts.back()))
        throw Failure("'" + job.output + "' is no name of a picture");
    const std::string name = parts.back();
    parts.pop_back();
    const Folder folder = m_root.Beneath(parts, true);
    if (folder.Size(name).value_or(0) > 0)
        return Result::Settled;

    const PageRecord record(folder, job);
    const auto fail = [&](bool killsWorkers, const std::string& reason) {
        record.NoteFailed({killsWorkers, reason});
        record.ForgetTries();
        return Result::Settled;
    };
    const std::string deaths = "killed " + std::to_string(PageRecord::kMostTries) + " workers";
    if (record.Tries() >= PageRecord::kMostTries)
        return fail(true, deaths);

    Outcome outcome;
    try {
        Descriptor input = m_root.OpenFileBeneath(job.file);
        NewFile picture(folder, name);
        record.Begin(picture.TemporaryName());
        outcome = DrawUnderLimits(job, std::move(input), picture, Narrower(job.limits, m_limits), m_verbose, alive);
        if (!outcome.said.empty())
            PrintSaid(outcome.said, job.file, job.page);
        if (outcome.kind == Outcome::Kind::Done) {
            if (picture.Publish(true)) {
                record.ForgetTries();
                record.ForgetFailed();
                return Result::Settled;
            }
            if (errno == ENOENT)
                return Result::Settled; // another worker took over and cleared up
            throw Failure("cannot write '" + job.output + "': " + std::strerror(errno));
        }
        if (!record.IsMine(picture.TemporaryName()))
            return Result::Settled;
    } catch (const Failure& failure) {
        return fail(false, failure.what());
    }
    if (outcome.kind != Outcome::Kind::Died)
        return fail(false, outcome.text);
    if (record.Tries() >= PageRecord::kMostTries)
        return fail(true, deaths + ", the last one: " + outcome.text);
    return Result::GiveBack;
}

} // namespace PdfPage
