// SPDX-License-Identifier: MIT
#include "Server.h"

#include "../PageRenderer.h"
#include "../jobs/Numbers.h"

#include <cstring>

namespace PdfPage {
namespace {

constexpr int kAnswerMilliseconds = 20000; // a durable queue waits for its disk
constexpr int kTakeMilliseconds = 1000;

} // namespace

Address Address::Parse(const std::string& text) {
    Address address;
    const size_t bracket = text.rfind(']');
    const size_t colon = text.rfind(':');
    const bool port = colon != std::string::npos && (bracket == std::string::npos || colon > bracket);
    address.host = text.substr(0, port ? colon : std::string::npos);
    if (address.host.size() > 1 && address.host.front() == '[' && address.host.back() == ']')
        address.host = address.host.substr(1, address.host.size() - 2);
    if (port)
        address.port = static_cast<uint16_t>(Number(text.substr(colon + 1), 1, 65535, "port"));
    if (address.host.empty())
        throw Failure("'" + text + "' is no host[:port]");
    return address;
}

SendingSide::SendingSide(const Address& address) : m_address(address), m_sends(Connected()), m_asks(Connected()) {}

SendingSide::Client SendingSide::Connected() const {
    Client client(gearman_client_create(nullptr));
    if (!client)
        throw Failure("out of memory");
    gearman_client_set_timeout(client.get(), kAnswerMilliseconds);
    gearman_client_add_server(client.get(), m_address.host.c_str(), m_address.port);
    return client;
}

bool SendingSide::Answers() {
    const bool answers = gearman_client_echo(m_sends.get(), "pdfpage", 7) == GEARMAN_SUCCESS;
    if (!answers)
        m_sends = Connected();
    return answers;
}

// A connection that was idle may have ended with a server that is there again: each call is tried twice.

bool SendingSide::Send(const std::string& unique, const std::string& job) {
    for (int i = 0; i < 2; ++i) {
        gearman_job_handle_t handle;
        if (gearman_client_do_background(m_sends.get(), kFunction, unique.c_str(), job.data(), job.size(), handle) ==
            GEARMAN_SUCCESS)
            return true;
        m_sends = Connected();
    }
    return false;
}

SendingSide::State SendingSide::Ask(const std::string& unique) {
    for (int i = 0; i < 2; ++i) {
        const gearman_status_t status = gearman_client_unique_status(m_asks.get(), unique.c_str(), unique.size());
        const gearman_return_t result = gearman_status_return(status);
        if (gearman_success(result) || gearman_continue(result))
            return !gearman_status_is_known(status)    ? State::Unknown
                   : gearman_status_is_running(status) ? State::Running
                                                       : State::Queued;
        m_asks = Connected();
    }
    return State::NoAnswer;
}

WorkingSide::WorkingSide(const Address& address, const std::string& identity, Settle settle)
    : m_settle(std::move(settle)), m_worker(gearman_worker_create(nullptr)) {
    if (!m_worker)
        throw Failure("out of memory");
    gearman_worker_set_timeout(m_worker.get(), kTakeMilliseconds);
    gearman_worker_add_options(m_worker.get(), GEARMAN_WORKER_TIMEOUT_RETURN);
    gearman_worker_set_identifier(m_worker.get(), identity.data(), identity.size());
    gearman_worker_add_server(m_worker.get(), address.host.c_str(), address.port);
    // Without a time limit on the server's side: it knows none below 1000 seconds, and a page has its own.
    gearman_worker_define_function(m_worker.get(), kFunction, std::strlen(kFunction), gearman_function_create(Called),
                                   0, this);
}

gearman_return_t WorkingSide::Called(gearman_job_st* job, void* self) {
    const auto* bytes = static_cast<const char*>(gearman_job_workload(job));
    const std::string text = bytes ? std::string(bytes, gearman_job_workload_size(job)) : std::string();
    // An error is not a failure of the job: it ends the connection, and the server hands the job out again.
    return static_cast<WorkingSide*>(self)->m_settle(text) ? GEARMAN_SUCCESS : GEARMAN_ERROR;
}

WorkingSide::Turn WorkingSide::Work() {
    switch (gearman_worker_work(m_worker.get())) {
    case GEARMAN_SUCCESS:
        return Turn::Page;
    case GEARMAN_TIMEOUT:
    case GEARMAN_NO_JOBS:
        return Turn::Nothing;
    default:
        return Turn::Lost;
    }
}

} // namespace PdfPage
