// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "platform/IniFormat.h"

#include <QString>

#include <map>
#include <optional>

namespace quillo {

/// By key: the new value, or none for a key to be removed.
using DefaultsChanges = std::map<QString, std::optional<IniValue>>;

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

    /// Applies the changes to what the file holds at this moment and writes it, one process at a time. A
    /// file that is damaged or that is no file is first put aside as "NAME.damaged", "NAME.damaged-2", and
    /// so on. Returns false, leaving what there was, when the new file cannot be written.
    bool apply(const DefaultsChanges& changes) const;

private:
    QString m_path;
};

} // namespace quillo
