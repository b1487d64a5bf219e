// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <vector>

/// Puts a small PDF file together from the literal text of its objects, so that a test can show what is in
/// the file. Objects are numbered from 1; 1 is the catalog and 2 the root of the page tree.
class PDFWriter
{
public:
    PDFWriter();

    /// Adds an object and gives its number.
    int add(const QByteArray& object);
    /// Adds a stream; `entries` are the dictionary's besides the length.
    int addStream(const QByteArray& data, const QByteArray& entries = {});
    /// Puts another text in an object's place.
    void replace(int number, const QByteArray& object);

    /// Adds a page of US letter size, unless the entries say otherwise. /F1 is Helvetica.
    int addPage(const QByteArray& content, const QByteArray& entries = {});
    /// Entries of the page's resources besides the fonts, for pages added from now on.
    void setResources(const QByteArray& entries) { m_resources = entries; }
    /// Fonts besides /F1, for pages added from now on.
    void setFonts(const QByteArray& entries) { m_fonts = entries; }
    /// What the page tree says it holds, instead of the truth.
    void setCount(const QByteArray& count) { m_count = count; }
    /// Entries of the catalog besides the page tree.
    void setCatalog(const QByteArray& entries) { m_catalog = entries; }

    /// The file with its cross-reference table.
    QByteArray bytes() const;

private:
    std::vector<QByteArray> m_objects;
    std::vector<int> m_pages;
    QByteArray m_resources;
    QByteArray m_fonts;
    QByteArray m_count;
    QByteArray m_catalog;
    int m_helvetica = 0;
};

/// A folder of its own for files of one test.
class TestFolder
{
public:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    /// Writes a file and gives its path.
    QString write(const QString& name, const QByteArray& bytes) const;

private:
    QTemporaryDir m_folder;
};

/// A content stream that shows text at a place, in Helvetica of 12 points.
QByteArray showText(double x, double y, const QByteArray& text);
