// SPDX-License-Identifier: MIT
// Sends pages to the job server and waits for what becomes of them.
//
// Jobs are sent to run in the background: only those are in the server's durable queue, and go on when this program
// ends. What became of a page is in the shared folder: its picture, or the record of its failure (PageRecord). So it
// does not matter which worker drew it, how often the server was restarted, or whether a page was drawn twice.
//
// The server is asked about the oldest pages now and then. One that it does not know and that left nothing was lost
// with a queue that was not durable: it is sent again. One that runs for longer than any page may has a worker that
// hangs: it is sent again under another name, since under its own it still runs.
#include "Queue.h"

#include "../PageRenderer.h"
#include "../jobs/Folder.h"
#include "../jobs/PageRecord.h"
#include "../jobs/RunReport.h"
#include "../jobs/StopSignals.h"
#include "Outstanding.h"
#include "Server.h"

#include <chrono>
#include <filesystem>
#include <map>

namespace PdfPage {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

constexpr std::chrono::milliseconds kSendFor{200};
constexpr std::chrono::seconds kAskEvery{1};
constexpr size_t kAskAbout = 64;
// A picture may come to sight some time after the server forgot the page: a network file system looks again after
// seconds. The second time waits twice as long, and so on.
constexpr double kLostAfter = 4;
constexpr unsigned kMostSent = 5;
constexpr std::chrono::milliseconds kTryEvery{500};
constexpr Seconds kServerGone{600};

std::filesystem::path Canonical(const std::string& path) {
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::canonical(path, error);
    if (error)
        throw Failure("cannot open '" + path + "': " + error.message());
    return whole;
}

// The road from the root to the path, without symbolic links.
std::string BelowRoot(const std::filesystem::path& root, const std::string& path) {
    const std::filesystem::path relative = Canonical(path).lexically_relative(root);
    if (relative.empty() || *relative.begin() == "..")
        throw Failure("'" + path + "' is outside the root folder '" + root.string() + "'");
    return relative.generic_string();
}

class Sender {
public:
    explicit Sender(const CommandLine& line)
        : m_line(line), m_root(Canonical(line.root)), m_folder(Folder::Make(line.folder.empty() ? "." : line.folder)),
          m_place(BelowRoot(m_root, line.folder.empty() ? "." : line.folder)), m_survey(line, m_failures),
          m_address(Address::Parse(line.via)), m_server(m_address) {
        for (const std::string& file : m_survey.Files()) {
            std::error_code error;
            m_files.push_back(std::filesystem::exists(file, error) ? BelowRoot(m_root, file) : file);
        }
        m_tally.all = m_survey.Count();
        if (m_tally.all > 0 && !m_server.Answers())
            throw Failure("the job server at " + m_address.Text() + " does not answer");
    }

    int Run() {
        while (m_tally.Left() > 0 && !StopSignals::Asked() && !m_gaveUp) {
            Send();
            const Clock::time_point begin = Clock::now();
            m_outstanding.Settle([this](const Item& item) { return Settled(item); });
            if (Clock::now() >= m_nextAsk)
                AskAboutOldest();
            m_progress.Show(m_tally);
            // Looking takes a tenth of the time at most: a network file system has others to serve.
            const auto looked = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count();
            if (!m_more || m_serverGoneSince)
                StopSignals::Sleep(static_cast<int>(std::clamp<long long>(9 * looked, 20, 2000)));
        }
        const int code = EndRun(m_progress, m_tally, m_failures, m_survey.Files().size());
        if (m_gaveUp)
            std::fprintf(stderr, "pdfpage: the job server does not answer any more, %zu pages are left\n",
                         m_tally.Left());
        if (StopSignals::Asked() && m_outstanding.Count() > 0)
            std::fprintf(stderr, "pdfpage: the job server keeps what was sent; --resume waits for it again\n");
        return m_gaveUp ? 1 : code;
    }

private:
    using Item = Survey::Item;

    // A page whose fate is in doubt.
    struct Doubt {
        unsigned sent = 1;
        std::string suffix; // of the name under which it was sent last
        std::optional<Clock::time_point> unknownSince, runningSince;
    };

    PageJob JobOf(const Item& item) const {
        const std::string name = m_survey.Name(item);
        return {m_files[item.file], item.page,    m_line.dpi, m_place == "." ? name : m_place + "/" + name,
                m_line.limits,      m_line.adjust};
    }

    // As many as go in a moment.
    void Send() {
        const Clock::time_point until = Clock::now() + kSendFor;
        if (Clock::now() < m_nextTry)
            return;
        while (m_more && Clock::now() < until) {
            if (!m_unsent) {
                Item item;
                m_more = m_survey.Next(item);
                if (!m_more || !Wanted(item))
                    continue;
                m_unsent = item;
            }
            const PageJob job = JobOf(*m_unsent);
            if (!Reached(m_server.Send(job.Key(), job.Packed())))
                return;
            m_outstanding.Add(*m_unsent);
            m_unsent.reset();
        }
    }

    // Whether the page is to be drawn. What an earlier run left of it is taken away then.
    bool Wanted(const Item& item) {
        const std::string name = m_survey.Name(item);
        const PageRecord record(m_folder, JobOf(item));
        if (m_line.resume && m_folder.Size(name).value_or(0) > 0) {
            ++m_tally.skipped;
            return false;
        }
        if (const auto failed = record.Failed(); m_line.resume && failed && failed->killsWorkers) {
            Fail(item, failed->reason);
            return false;
        }
        if (!m_line.resume) {
            m_folder.Remove(name);
            record.ForgetTries();
        }
        record.ForgetFailed();
        return true;
    }

    bool Settled(const Item& item) {
        if (m_folder.Size(m_survey.Name(item)).value_or(0) > 0)
            ++m_tally.done;
        else if (const auto failed = PageRecord(m_folder, JobOf(item)).Failed())
            Fail(item, failed->reason);
        else
            return false;
        m_doubts.erase({item.file, item.page});
        return true;
    }

    void Fail(const Item& item, const std::string& reason) {
        ++m_tally.failed;
        m_failures.AddPage(reason, m_survey.Files()[item.file], item.page);
    }

    void AskAboutOldest() {
        m_nextAsk = Clock::now() + kAskEvery;
        size_t asked = 0;
        m_outstanding.Settle([&](const Item& item) {
            if (asked++ >= kAskAbout || Clock::now() < m_nextTry)
                return false;
            return AskAbout(item);
        });
    }

    // True when the page is settled.
    bool AskAbout(const Item& item) {
        const PageJob job = JobOf(item);
        Doubt& doubt = m_doubts[{item.file, item.page}];
        const SendingSide::State state = m_server.Ask(job.Key() + doubt.suffix);
        if (!Reached(state != SendingSide::State::NoAnswer))
            return false;
        // It may have been settled in between.
        if (state == SendingSide::State::Unknown && Settled(item))
            return true;
        const auto since = [&](std::optional<Clock::time_point>& start, SendingSide::State wanted) {
            if (state != wanted)
                start.reset();
            else if (!start)
                start = Clock::now();
            return start ? Seconds(Clock::now() - *start).count() : 0.0;
        };
        const double unknown = since(doubt.unknownSince, SendingSide::State::Unknown);
        const double running = since(doubt.runningSince, SendingSide::State::Running);
        const double mayRun = m_line.limits.seconds > 0 ? m_line.limits.seconds : kDefaultPageSeconds;
        const bool lost = unknown >= kLostAfter * (1u << (doubt.sent - 1));
        const bool hangs = running >= 1.1 * mayRun + 5;
        if (!lost && !hangs)
            return false;
        if (doubt.sent >= kMostSent) {
            Fail(item, lost ? "lost by the job server" : "its workers hang");
            m_doubts.erase({item.file, item.page});
            return true;
        }
        if (hangs)
            doubt.suffix = "-" + std::to_string(doubt.sent);
        if (Reached(m_server.Send(job.Key() + doubt.suffix, job.Packed()))) {
            ++doubt.sent;
            doubt.unknownSince.reset();
            doubt.runningSince.reset();
        }
        return false;
    }

    // Keeps count of whether the server answers, and leaves it in peace for a while when not.
    bool Reached(bool reached) {
        m_nextTry = reached ? Clock::time_point() : Clock::now() + kTryEvery;
        if (reached) {
            m_serverGoneSince.reset();
        } else if (!m_serverGoneSince) {
            m_serverGoneSince = Clock::now();
            m_progress.Clear();
            std::fprintf(stderr, "pdfpage: the job server at %s does not answer, trying on\n",
                         m_address.Text().c_str());
        } else if (Clock::now() - *m_serverGoneSince > kServerGone) {
            m_gaveUp = true;
        }
        return reached;
    }

    const CommandLine& m_line;
    const std::filesystem::path m_root;
    const Folder m_folder;
    const std::string m_place; // of the folder below the root
    Failures m_failures;
    Survey m_survey;
    std::vector<std::string> m_files; // below the root
    const Address m_address;
    SendingSide m_server;
    Tally m_tally;
    Progress m_progress;
    Outstanding m_outstanding;
    std::map<std::pair<size_t, int>, Doubt> m_doubts;
    std::optional<Item> m_unsent; // could not be sent yet
    std::optional<Clock::time_point> m_serverGoneSince;
    Clock::time_point m_nextAsk = Clock::now() + kAskEvery, m_nextTry;
    bool m_more = true, m_gaveUp = false;
};

} // namespace

int SendPages(const CommandLine& line) {
    const StopSignals signals;
    return Sender(line).Run();
}

} // namespace PdfPage
