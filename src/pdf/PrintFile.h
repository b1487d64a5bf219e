// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/FileReplacement.h"

#include <QByteArray>
#include <QSizeF>

#include <vector>

namespace pdf {

/// A PDF file of sheets that is written from front to back, one object after another, so that nothing of it
/// stays in memory but where the objects are. A number whose object is never written becomes null. What
/// goes wrong is kept by the file that is written to.
class PrintFile
{
public:
    explicit PrintFile(FileReplacement& file);

    /// A number for an object that is written later or never.
    int newObject();

    /// Writes nothing where it throws.
    void beginObject(int number);
    // These never throw.
    void append(const char* data, std::size_t size) { m_file.write(data, size); }
    void append(const QByteArray& data) { append(data.constData(), static_cast<std::size_t>(data.size())); }
    void endObject();

    void addObject(int number, const QByteArray& object);
    /// `entries` are the dictionary's besides the length.
    void addStream(int number, const QByteArray& entries, const QByteArray& data);

    /// Adds a sheet below all others. `entries` are the page's besides its size.
    void addSheet(QSizeF paper, const QByteArray& entries);

    /// Ends the file. `catalog` are entries of the catalog besides the pages.
    void finish(const QByteArray& catalog);

private:
    struct Branch
    {
        int number = 0;
        int sheets = 0;
    };

    void endBranch();
    void writeTable(int catalog);

    FileReplacement& m_file;
    /// Where the objects are, by number; 0 where they are not written yet. Number 0 is no object.
    std::vector<qint64> m_offsets = {0};
    const int m_root;
    std::vector<Branch> m_branches;
    /// The sheets of the branch that is still growing.
    int m_branch = 0;
    std::vector<int> m_sheets;
};

} // namespace pdf
