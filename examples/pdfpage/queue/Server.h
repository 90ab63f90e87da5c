// SPDX-License-Identifier: MIT
// The two sides of a connection to a Gearman job server.
#pragma once

#include <libgearman/gearman.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace PdfPage {

// The name under which pages are queued.
constexpr const char* kFunction = "pdfpage";

// Seconds of a page without a limit of its own: it would hold its worker for ever.
constexpr double kDefaultPageSeconds = 600;

struct Address {
    std::string host;
    uint16_t port = 4730;

    // "host", "host:port", "[::1]:port". Throws Failure.
    static Address Parse(const std::string& text);
    std::string Text() const { return host + ":" + std::to_string(port); }
};

class SendingSide {
public:
    // Throws Failure when memory runs out; nothing is sent yet.
    explicit SendingSide(const Address& address);

    bool Answers();
    // Queued, durably if the server keeps a durable queue. What is queued or running under this name is not queued
    // again.
    bool Send(const std::string& unique, const std::string& job);

    enum class State { NoAnswer, Unknown, Queued, Running };
    State Ask(const std::string& unique);

private:
    struct Free {
        void operator()(gearman_client_st* client) const noexcept { gearman_client_free(client); }
    };
    using Client = std::unique_ptr<gearman_client_st, Free>;

    // Anew after a failed call, which leaves a client in no useful state.
    Client Connected() const;

    const Address m_address;
    // A connection for each kind of question: in libgearman 1.1.20 a job that is sent after a status was asked for
    // waits for an answer that does not come.
    Client m_sends, m_asks;
};

class WorkingSide {
public:
    // Gets the job that was sent. True when it is settled, and the server may forget it; otherwise it goes to another
    // worker, and this connection is at its end.
    using Settle = std::function<bool(const std::string& job)>;

    WorkingSide(const Address& address, const std::string& identity, Settle settle);

    // Takes a page and settles it, or waits for one, a second at most.
    enum class Turn { Page, Nothing, Lost };
    Turn Work();

private:
    struct Free {
        void operator()(gearman_worker_st* worker) const noexcept { gearman_worker_free(worker); }
    };
    static gearman_return_t Called(gearman_job_st* job, void* self);

    const Settle m_settle;
    std::unique_ptr<gearman_worker_st, Free> m_worker;
};

} // namespace PdfPage
