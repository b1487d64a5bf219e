// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PrintFile.h"

#include "pdf/ContentStream.h"

#include <string_view>

namespace pdf {
namespace {

constexpr std::size_t sheetsPerBranch = 64;

QByteArray reference(int number)
{
    return QByteArray::number(number) + " 0 R";
}

} // namespace

PrintFile::PrintFile(FileReplacement& file)
    : m_file(file)
    , m_root(newObject())
{
    // The second line tells programs that transfer files that this one is not text.
    append("%PDF-1.7\n%\xE2\xE3\xCF\xD3\n");
}

int PrintFile::newObject()
{
    m_offsets.push_back(0);
    return static_cast<int>(m_offsets.size()) - 1;
}

void PrintFile::beginObject(int number)
{
    const QByteArray head = QByteArray::number(number) + " 0 obj\n";
    m_offsets[static_cast<std::size_t>(number)] = m_file.position();
    append(head);
}

void PrintFile::endObject()
{
    static constexpr std::string_view end = "\nendobj\n";
    append(end.data(), end.size());
}

void PrintFile::addObject(int number, const QByteArray& object)
{
    beginObject(number);
    append(object);
    endObject();
}

void PrintFile::addStream(int number, const QByteArray& entries, const QByteArray& data)
{
    beginObject(number);
    append("<< " + entries + " /Length " + QByteArray::number(data.size()) + " >>\nstream\n");
    append(data);
    append("\nendstream");
    endObject();
}

void PrintFile::addSheet(QSizeF paper, const QByteArray& entries)
{
    if (m_sheets.empty())
        m_branch = newObject();
    const int number = newObject();
    m_sheets.push_back(number);
    addObject(
        number, "<< /Type /Page /Parent " + reference(m_branch) + " /MediaBox [0 0 " +
                    contentNumber(paper.width()) + ' ' + contentNumber(paper.height()) + "] " + entries +
                    " >>");
    if (m_sheets.size() == sheetsPerBranch)
        endBranch();
}

void PrintFile::endBranch()
{
    QByteArray kids;
    for (const int sheet : m_sheets)
        kids += reference(sheet) + ' ';
    const auto count = static_cast<int>(m_sheets.size());
    addObject(
        m_branch, "<< /Type /Pages /Parent " + reference(m_root) + " /Count " + QByteArray::number(count) +
                      " /Kids [" + kids + "] >>");
    m_branches.push_back({m_branch, count});
    m_sheets.clear();
}

void PrintFile::finish(const QByteArray& catalog)
{
    if (!m_sheets.empty())
        endBranch();
    QByteArray kids;
    int sheets = 0;
    for (const Branch& branch : m_branches) {
        kids += reference(branch.number) + ' ';
        sheets += branch.sheets;
    }
    addObject(m_root, "<< /Type /Pages /Count " + QByteArray::number(sheets) + " /Kids [" + kids + "] >>");
    const int number = newObject();
    addObject(number, "<< /Type /Catalog /Pages " + reference(m_root) + ' ' + catalog + " >>");
    for (std::size_t i = 1; i < m_offsets.size(); ++i) {
        if (m_offsets[i] == 0)
            addObject(static_cast<int>(i), "null");
    }
    writeTable(number);
}

void PrintFile::writeTable(int catalog)
{
    const qint64 start = m_file.position();
    const QByteArray size = QByteArray::number(static_cast<qint64>(m_offsets.size()));
    append("xref\n0 " + size + '\n');
    append("0000000000 65535 f \n");
    for (std::size_t i = 1; i < m_offsets.size(); ++i)
        append(QByteArray::number(m_offsets[i]).rightJustified(10, '0') + " 00000 n \n");
    append("trailer\n<< /Size " + size + " /Root " + reference(catalog) + " >>\nstartxref\n");
    append(QByteArray::number(start) + "\n%%EOF\n");
}

} // namespace pdf
