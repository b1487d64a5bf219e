// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/DefaultsWriter.h"

#include <chrono>
#include <utility>

namespace quillo {
namespace {

// Long enough to gather a burst of keystrokes, short enough that a crash costs none but the last of them.
constexpr std::chrono::milliseconds gatheringTime{200};

} // namespace

DefaultsWriter::DefaultsWriter(DefaultsFile file)
    : m_file(std::move(file))
{}

DefaultsWriter::~DefaultsWriter()
{
    {
        const std::lock_guard guard(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_one();
    if (m_thread.joinable())
        m_thread.join();
    synchronize();
}

void DefaultsWriter::change(const QString& key, std::optional<IniValue> value)
{
    const std::lock_guard guard(m_mutex);
    m_pending.insert_or_assign(key, std::move(value));
    wake();
}

std::shared_future<QString> DefaultsWriter::propose(const QString& key, const QString& text)
{
    const std::lock_guard guard(m_mutex);
    Proposal proposal{text, {}};
    std::shared_future<QString> agreed = proposal.agreed.get_future().share();
    m_proposals.insert_or_assign(key, std::move(proposal));
    wake();
    return agreed;
}

bool DefaultsWriter::synchronize()
{
    const std::lock_guard writing(m_writing);
    DefaultsChanges batch;
    std::map<QString, Proposal> proposals;
    {
        const std::lock_guard guard(m_mutex);
        batch.swap(m_pending);
        proposals.swap(m_proposals);
    }
    if (batch.empty() && proposals.empty())
        return true;
    DefaultsProposals texts;
    for (const auto& [key, proposal] : proposals)
        texts.emplace(key, proposal.text);
    const auto agreed = m_file.apply(batch, texts);
    for (auto& [key, proposal] : proposals)
        proposal.agreed.set_value((agreed ? *agreed : texts).at(key));
    if (agreed)
        return true;
    // A change decides over a proposal for its key.
    batch.insert(texts.begin(), texts.end());
    const std::lock_guard guard(m_mutex);
    // Changes that came meanwhile are newer than the batch.
    m_pending.merge(batch);
    return false;
}

/// With the mutex locked.
void DefaultsWriter::wake()
{
    m_due = true;
    if (!m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    m_wake.notify_one();
}

void DefaultsWriter::run()
{
    std::unique_lock guard(m_mutex);
    while (!m_stopping) {
        m_wake.wait(guard, [this] { return m_due || m_stopping; });
        m_wake.wait_for(guard, gatheringTime, [this] { return m_stopping; });
        m_due = false;
        guard.unlock();
        synchronize();
        guard.lock();
    }
}

} // namespace quillo
