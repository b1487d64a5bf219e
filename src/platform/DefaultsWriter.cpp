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
    m_due = true;
    if (!m_thread.joinable())
        m_thread = std::thread([this] { run(); });
    m_wake.notify_one();
}

bool DefaultsWriter::synchronize()
{
    const std::lock_guard writing(m_writing);
    DefaultsChanges batch;
    {
        const std::lock_guard guard(m_mutex);
        batch.swap(m_pending);
    }
    if (batch.empty() || m_file.apply(batch))
        return true;
    const std::lock_guard guard(m_mutex);
    // Changes that came meanwhile are newer than the batch.
    m_pending.merge(batch);
    return false;
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
