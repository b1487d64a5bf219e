// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/DefaultsFile.h"

#include <condition_variable>
#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace quillo {

/// Carries changes of the user's defaults to their file on a thread of its own, so that a burst of them costs
/// the caller nothing and the disk few writes. The thread starts with the first change.
class DefaultsWriter
{
public:
    explicit DefaultsWriter(DefaultsFile file);
    /// Writes what has not been written yet.
    ~DefaultsWriter();
    DefaultsWriter(const DefaultsWriter&) = delete;
    DefaultsWriter& operator=(const DefaultsWriter&) = delete;

    /// The file has the change within a second. One that cannot be written is kept and tried again with the
    /// next change, and at the end. Any thread.
    void change(const QString& key, std::optional<IniValue> value);

    /// Gives the key the text unless it has one in the file by then, whoever wrote it. The future tells, once
    /// the file has been written, which text the key has; where it cannot be written, that is the proposed
    /// one, which is then kept and tried again like any change. Any thread.
    std::shared_future<QString> propose(const QString& key, const QString& text);

    /// Writes what has not been written yet and returns whether nothing is left to write. Any thread.
    bool synchronize();

private:
    struct Proposal
    {
        QString text;
        std::promise<QString> agreed;
    };

    void wake();
    void run();

    const DefaultsFile m_file;
    /// Held while writing, so that batches reach the file in their order.
    std::mutex m_writing;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    DefaultsChanges m_pending;
    std::map<QString, Proposal> m_proposals;
    bool m_due = false;
    bool m_stopping = false;
    std::thread m_thread;
};

} // namespace quillo
