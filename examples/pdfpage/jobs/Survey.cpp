// SPDX-License-Identifier: MIT
#include "Survey.h"

#include "../PageRenderer.h"
#include "DrawPage.h"
#include "ProcessPool.h"
#include "StopSignals.h"

namespace PdfPage {

Survey::Survey(const CommandLine& line, Failures& failures)
    : m_files(WithoutTwins(line.files)), m_names(m_files), m_pages(m_files.size()) {
    const PageList wanted = line.pages.value_or(PageList::All());
    ProcessPool pool;
    for (size_t next = 0; !StopSignals::Asked() && (next < m_files.size() || pool.Running() > 0);) {
        if (next < m_files.size() && pool.Running() < line.jobs) {
            pool.Start(next, line.limits, [&] { return std::to_string(CountPages(m_files[next])); });
            ++next;
            continue;
        }
        const auto ended = pool.Wait(1000);
        if (!ended)
            continue;
        const std::string& file = m_files[ended->ticket];
        const Outcome& outcome = ended->outcome;
        try {
            if (outcome.kind != Outcome::Kind::Done)
                throw Failure(outcome.text);
            m_pages[ended->ticket] = wanted.In(std::stoi(outcome.text));
        } catch (const Failure& failure) {
            failures.AddFile(failure.what(), file);
        }
    }
}

size_t Survey::Count() const noexcept {
    size_t count = 0;
    for (const PageList& pages : m_pages)
        count += pages.Count();
    return count;
}

bool Survey::Next(Item& item) noexcept {
    for (; m_file < m_pages.size(); ++m_file, m_range = 0, m_page = 0) {
        for (const auto& ranges = m_pages[m_file].Ranges(); m_range < ranges.size(); ++m_range, m_page = 0) {
            if (m_page == ranges[m_range].last)
                continue;
            m_page = m_page == 0 ? ranges[m_range].first : m_page + 1;
            item = {m_file, m_page};
            return true;
        }
    }
    return false;
}

} // namespace PdfPage
