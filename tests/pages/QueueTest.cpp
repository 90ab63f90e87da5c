// SPDX-License-Identifier: MIT
// Pages through a real Gearman job server on the loopback address, with workers that die and hang.
#include "Program.h"
#include "TestFiles.h"

#include <algorithm>
#include <arpa/inet.h>
#include <memory>
#include <sys/socket.h>

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

sockaddr_in Loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int FreePort() {
    const int number = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    EXPECT_EQ(0, bind(number, reinterpret_cast<const sockaddr*>(&address), size));
    EXPECT_EQ(0, getsockname(number, reinterpret_cast<sockaddr*>(&address), &size));
    close(number);
    return ntohs(address.sin_port);
}

class JobServer {
public:
    JobServer(const fs::path& folder, bool durable) : m_folder(folder), m_durable(durable) { Start(); }

    std::string Address() const { return "127.0.0.1:" + std::to_string(m_port); }

    // The hard way: it has no time to write anything down.
    void KillAndStartAgain() {
        m_program->Signal(SIGKILL);
        m_program->Wait();
        Start();
    }

    // Pages in the queue, with those that run; -1 when the server does not answer.
    int Queued() const {
        const int number = socket(AF_INET, SOCK_STREAM, 0);
        const sockaddr_in address = Loopback(m_port);
        std::string text;
        if (connect(number, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
            write(number, "status\n", 7) == 7) {
            char block[512];
            for (ssize_t n; text.find(".\n") == std::string::npos && (n = read(number, block, sizeof block)) > 0;)
                text.append(block, static_cast<size_t>(n));
        }
        close(number);
        if (text.find(".\n") == std::string::npos)
            return -1;
        return text.rfind("pdfpage\t", 0) == 0 ? std::stoi(text.substr(8)) : 0;
    }

private:
    void Start() {
        Strings arguments{GX_GEARMAND, "--listen=127.0.0.1", "--port=" + std::to_string(m_port), "--log-file=stderr",
                          "--pid-file=" + (m_folder / "pid").string()};
        if (geteuid() == 0)
            arguments.push_back("--user=root");
        if (m_durable) {
            arguments.push_back("--queue-type=libsqlite3");
            arguments.push_back("--libsqlite3-db=" + (m_folder / "queue.db").string());
        }
        m_program = std::make_unique<Program>(arguments, m_folder / "server.log");
        ASSERT_TRUE(Await([&] { return Queued() >= 0; })) << m_program->Said();
    }

    const fs::path m_folder;
    const bool m_durable;
    const int m_port = FreePort();
    std::unique_ptr<Program> m_program;
};

std::vector<pid_t> Children(pid_t process) {
    const std::string id = std::to_string(process);
    std::istringstream text(Contents("/proc/" + id + "/task/" + id + "/children"));
    std::vector<pid_t> children;
    for (pid_t child; text >> child;)
        children.push_back(child);
    return children;
}

struct QueueTest : testing::Test {
    QueueTest() : folder(EmptyFolder()), root(folder / "root"), out(root / "out") { fs::create_directories(out); }

    void Copy(const char* name) const { fs::copy_file(fs::path(GX_PAGES_CORPUS) / name, root / name); }

    std::unique_ptr<Program> Worker(const JobServer& server, const char* name, const char* seconds) const {
        return std::make_unique<Program>(Strings{GX_PDFPAGE, "--worker", server.Address(), "--root", root.string(),
                                                 "--jobs", "1", "--timeout", seconds},
                                         folder / name, kSmallStack);
    }

    Strings Arguments(const Strings& files, const Strings& others) const {
        Strings arguments{GX_PDFPAGE};
        for (const std::string& file : files)
            arguments.push_back((root / file).string());
        arguments.insert(arguments.end(), others.begin(), others.end());
        return arguments;
    }

    // Whether this worker is in the middle of a page: the last to begin it, and its temporary file is there.
    bool UnderWay(const Program& worker) const {
        const std::vector<pid_t> slots = Children(worker.Id());
        for (const std::string& name : Names(out, false)) {
            std::istringstream lines(name.ends_with(".tries") ? Contents(out / name) : "");
            std::string temporary, host;
            pid_t process = 0;
            while (lines >> temporary >> host >> process) {
            }
            if (!temporary.empty() && fs::exists(out / temporary) &&
                std::find(slots.begin(), slots.end(), process) != slots.end())
                return true;
        }
        return false;
    }

    // Stops the worker and what it started in the middle of a page.
    bool StopInTheMiddle(const Program& worker) const {
        return Await([&] {
            worker.Signal(SIGSTOP);
            if (UnderWay(worker))
                return true;
            worker.Signal(SIGCONT);
            return false;
        });
    }

    const fs::path folder, root, out;
};

TEST_F(QueueTest, EveryPageArrivesWhateverHappensToServerAndWorkers) {
    if (!kHoldsLimits)
        GTEST_SKIP() << kHoldsNoLimits;
    Copy("page_rotated.pdf");
    Copy("slides.pdf");
    WriteEndlessFile(root / "endless.pdf");
    WriteKillingFile(root / "killer.pdf");
    const Strings files{"page_rotated.pdf", "killer.pdf", "slides.pdf", "endless.pdf"};
    constexpr int kPages = 13;
    Strings options{"--dpi", "72", "--timeout", "5", "--root", root.string(), "--out", out.string()};
    JobServer server(folder, true);
    options.insert(options.end(), {"--via", server.Address()});
    Program sender(Arguments(files, options), folder / "sender.log");

    // The queue survives, without help from the sender.
    ASSERT_TRUE(Await([&] { return server.Queued() == kPages; })) << sender.Said();
    sender.Signal(SIGSTOP);
    server.KillAndStartAgain();
    EXPECT_EQ(kPages, server.Queued());
    sender.Signal(SIGCONT);

    // The first worker dies with a page, the second one stands still with another.
    const auto dies = Worker(server, "dies.log", "5");
    ASSERT_TRUE(StopInTheMiddle(*dies)) << dies->Said();
    dies->Signal(SIGKILL);
    dies->Wait();
    const auto hangs = Worker(server, "hangs.log", "5");
    ASSERT_TRUE(StopInTheMiddle(*hangs)) << hangs->Said();
    const auto works = Worker(server, "works.log", "5");

    EXPECT_EQ(1, sender.Wait()) << sender.Said();
    const std::string said = sender.Said();
    const std::string killer = (root / "killer.pdf").string(), endless = (root / "endless.pdf").string();
    EXPECT_NE(std::string::npos, said.find("11 of 13 pages done, 2 failed")) << said;
    for (const std::string& part : {std::string("2 of 13 pages failed: killed 3 workers"), killer + " 2; ",
                                    "time limit of 5 s reached: " + endless + " 2"})
        EXPECT_NE(std::string::npos, said.find(part)) << part << "\n" << said;

    // Who stood still and goes on spoils nothing; each ends when it is told to.
    hangs->Signal(SIGCONT);
    for (const auto& worker : {&hangs, &works}) {
        kill((*worker)->Id(), SIGTERM);
        EXPECT_EQ(0, (*worker)->Wait()) << (*worker)->Said();
    }
    // Byte for byte as drawn here; beside the pictures there are only the records of the two that failed.
    const fs::path local = folder / "local";
    const auto drawHere = [&](const Strings& some, const char* pages) {
        Program(Arguments(some, {"--dpi", "72", "--pages", pages, "--out", local.string()}), folder / "local.log",
                kSmallStack)
            .Wait();
    };
    drawHere({"page_rotated.pdf", "killer.pdf", "slides.pdf"}, "1-");
    drawHere({"endless.pdf"}, "1");
    ASSERT_EQ(Names(local, true), Names(out, true));
    EXPECT_EQ(11u, Names(out, true).size());
    for (const std::string& name : Names(local, true))
        EXPECT_EQ(Contents(local / name), Contents(out / name)) << name;
    const Strings records = Names(out, false);
    EXPECT_EQ(2u, records.size());
    for (const std::string& name : records)
        EXPECT_TRUE(name.ends_with(".failed")) << name;

    // A page that kills workers is not tried again: nobody is there to draw it, and the report comes at once.
    options.push_back("--resume");
    Program again(Arguments({"killer.pdf", "slides.pdf"}, options), folder / "again.log");
    EXPECT_EQ(1, again.Wait());
    EXPECT_NE(std::string::npos, again.Said().find("0 of 5 pages done, 1 failed, 4 there already")) << again.Said();
    EXPECT_NE(std::string::npos, again.Said().find("killed 3 workers")) << again.Said();
}

TEST_F(QueueTest, PagesAreSentAgainWhenTheQueueWasLostAndTakenFromASlotThatHangs) {
    WriteEndlessFile(root / "endless.pdf");
    JobServer server(folder, false);
    Program sender(Arguments({"endless.pdf"}, {"--timeout", "300", "--root", root.string(), "--out", out.string(),
                                               "--via", server.Address()}),
                   folder / "sender.log");
    ASSERT_TRUE(Await([&] { return server.Queued() == 2; })) << sender.Said();
    server.KillAndStartAgain();
    EXPECT_LT(server.Queued(), 2);
    const auto worker = Worker(server, "worker.log", "300");
    ASSERT_TRUE(Await([&] { return fs::exists(out / "endless-1.png") && UnderWay(*worker); })) << sender.Said();

    // The slot stands still, the worker above it does not.
    const std::vector<pid_t> slots = Children(worker->Id());
    ASSERT_EQ(1u, slots.size());
    kill(slots[0], SIGSTOP);
    const auto tries = [&] {
        for (const std::string& name : Names(out, false))
            if (name.ends_with(".tries")) {
                const std::string text = Contents(out / name);
                return std::count(text.begin(), text.end(), '\n');
            }
        return std::ptrdiff_t{0};
    };
    EXPECT_TRUE(Await([&] { return tries() == 2; })) << worker->Said();
    EXPECT_NE(std::string::npos, worker->Said().find("slot 1 hangs and is started anew"));
    EXPECT_NE(0, kill(slots[0], 0));
}

TEST_F(QueueTest, SaysWhatCanNotBeSent) {
    Copy("page_tiny.pdf");
    const std::string nobody = "127.0.0.1:" + std::to_string(FreePort());
    const auto ends = [&](const Strings& arguments, const char* part) {
        Program program(arguments, folder / "log");
        EXPECT_EQ(1, program.Wait());
        const std::string said = program.Said();
        EXPECT_EQ(1, std::count(said.begin(), said.end(), '\n')) << said;
        EXPECT_NE(std::string::npos, said.find(part)) << said;
    };
    ends(Arguments({"page_tiny.pdf"}, {"--via", nobody, "--root", root.string(), "--out", out.string()}),
         "does not answer");
    ends(Arguments({"page_tiny.pdf"}, {"--via", nobody, "--root", root.string(), "--out", folder.string()}),
         "outside the root");
    ends(Arguments({"page_tiny.pdf"}, {"--via", nobody, "--root", out.string(), "--out", out.string()}),
         "outside the root");
    ends({GX_PDFPAGE, "--worker", nobody, "--root", (folder / "none").string()}, "cannot open the folder");
}

} // namespace
