// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/IniFormat.h"

#include <QString>

#include <map>
#include <optional>

namespace quillo {

/// By key: the new value, or none for a key to be removed.
using DefaultsChanges = std::map<QString, std::optional<IniValue>>;

/// By key: the text that a key is to have unless it has one.
using DefaultsProposals = std::map<QString, QString>;

/// The file under the user's defaults. It has the format of QSettings but not its way of writing, which makes
/// new files readable by everybody, takes a damaged file for what is left of it and writes over it, and
/// runs where it is called. Here every write goes to a new file, private to its owner from its first byte,
/// which is flushed to disk before it takes the name of the old one: whoever is killed at whatever moment
/// leaves the old or the new file. May be used on any thread; one write at a time.
class DefaultsFile
{
public:
    explicit DefaultsFile(QString path);

    /// What the file holds; nothing when it is absent, damaged or not to be read. Changes nothing but the
    /// permissions of a file that others than its owner can reach.
    IniValues read() const;

    /// Applies the changes and then the proposals to what the file holds at this moment and writes it, one
    /// process at a time; a file that holds all that already is left as it is. Each proposal becomes the text
    /// that its key has then. A file that is damaged or that is no file is first put aside as "NAME.damaged",
    /// "NAME.damaged-2", and so on. Returns the proposals as they have become, or none, leaving what there
    /// was, when the new file cannot be written.
    std::optional<DefaultsProposals>
    apply(const DefaultsChanges& changes, const DefaultsProposals& proposals = {}) const;

private:
    QString m_path;
};

} // namespace quillo
