// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Cancellation.h"
#include "pdf/FieldValue.h"
#include "pdf/PDFError.h"
#include "pdf/PDFSelection.h"
#include "pdf/PrintLayout.h"
#include "pdf/TextPattern.h"

#include <QString>
#include <QUrl>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>
#include <vector>

namespace pdf {

class PDFAnnotation;
class PDFPage;
class DocumentHandle;
class SourceFile;
class TextIndex;

/// Where a text that was searched for occurs. Small, because there may be millions.
struct TextMatch
{
    /// Zero-based.
    qint32 page = 0;
    /// In UTF-16 code units of the page's text.
    qint32 location = 0;
    qint32 length = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): taken for a comparison with zero
    friend auto operator<=>(const TextMatch&, const TextMatch&) = default;
};

/// What write() does with the document's own file when another program has changed it since it was opened or
/// last written. Any other file that is given to write() is overwritten.
enum class Overwrite { unlessChanged, always };

/// An open PDF file. Safe from any thread: each operation holds the document's own lock while it runs (but
/// isLocked() and pageCount() wait for nobody), so threads that want to read in parallel open the file once
/// each. Opening touches neither the network nor any
/// other file, and no script or launch action is ever run.
class PDFDocument : public std::enable_shared_from_this<PDFDocument>
{
public:
    /// Opens a file by its path. Damaged files are repaired in memory where that is possible. An encrypted
    /// file that needs a password opens locked: it has no pages until it is unlocked. The cost does not
    /// depend on the number of pages.
    static Result<std::shared_ptr<PDFDocument>>
    open(const QString& path, const Cancellation& cancellation = {});

    ~PDFDocument();
    PDFDocument(const PDFDocument&) = delete;
    PDFDocument& operator=(const PDFDocument&) = delete;

    /// The same file once more, unlocked like this one, for another thread to read at the same time; null
    /// when that fails. It is read from where this one is read from, so it is the same document even when
    /// another file has taken its name meanwhile. What was changed in this one is not in it.
    std::shared_ptr<PDFDocument> openAgain(const Cancellation& cancellation = {});

    /// False once another program has written into the file that the document is read from, so that what is
    /// read now may not be what was opened. A file that was replaced by another one stays as it was.
    bool isFileIntact() const;

    /// The file as it was given to open().
    QUrl documentURL() const;

    /// True while a password is missing.
    bool isLocked() const;
    /// Tries the text as user or owner password. A wrong one changes nothing and gives false.
    bool unlock(const QString& password);

    /// The number of pages that the document claims to have; 0 while it is locked.
    int pageCount() const;

    /// The page at the zero-based index, or null when there is none or it cannot be read. Asking twice gives
    /// the same object while somebody holds it.
    std::shared_ptr<PDFPage> page(int index);

    /// The page's zero-based index, or -1 when it belongs to another document.
    int index(const PDFPage& page) const;

    /// The text between two places, whichever of them comes first; absent when that is none or when
    /// cancelled. Reads the text of all pages in between.
    std::optional<PDFSelection>
    selection(TextPosition from, TextPosition to, const Cancellation& cancellation = {});

    /// The text at a match; absent when the page has no such text. Does not wait for the document where the
    /// page's text is in the index.
    std::optional<PDFSelection> selection(const TextMatch& match);

    /// Begins to read the text of all pages, in the background and from a second reading of the file, so that
    /// searches need not. Does not wait for the document; the first search does it by itself.
    void beginIndexing();

    /// Every occurrence of the text, in the order of the document; see TextPattern for what counts as one.
    /// Waits until the text of all pages is known; incomplete when cancelled.
    std::vector<PDFSelection>
    findString(const QString& text, FindOptions options = {}, const Cancellation& cancellation = {});

    /// The same without waiting: the matches are handed to `receive` on another thread, in the order of the
    /// document and as the text of the pages becomes known; the last call has `isLast` set. There is none
    /// when the search was cancelled or the document is gone.
    using MatchReceiver = std::function<void(std::vector<TextMatch> matches, bool isLast)>;
    void beginFindString(
        const QString& text, FindOptions options, const Cancellation& cancellation, MatchReceiver receive);

    /// True when the document has changes that its own file does not have.
    bool isModified() const;

    /// False once another program has cut its file short or written something else into it: pages that are
    /// not read yet are lost then. A file that was replaced by another one, removed, added to or only touched
    /// does no harm. Waits for nobody.
    bool isFileReadable() const;

    /// True where the document has a form with fields, on whatever page they are.
    bool hasForm() const;
    /// True where the document's form is made for another technology (XFA) and has no fields that can be
    /// filled in here.
    bool isXFAOnly() const;

    /// Writes the document with all its changes to a file. Whatever happens, the file has the old content or
    /// the new one, whole, and the document keeps its changes; after a failure it can be written elsewhere.
    /// Symbolic links are followed; a file that is there gives its owner and permissions to the new one.
    ///
    /// The changes are appended to what was read, so signatures in it stay valid; only a file that had to be
    /// repaired is written anew. Encryption, passwords and permissions stay. Writing again replaces the
    /// changes that were appended before rather than adding to them.
    ///
    /// Fails with `unwritable` or `changedMeanwhile`, and with `passwordRequired` for a damaged document that
    /// is locked. The document can be read by other threads while the file is copied.
    Result<std::monostate> write(
        const QString& path, Overwrite overwrite = Overwrite::unlessChanged,
        const Cancellation& cancellation = {});

    /// Is told how many of how many sheets are done, on the thread that prints.
    using PrintProgress = std::function<void(int sheets, int totalSheets)>;

    /// Writes a PDF file of the sheets that the layout asks for, to be sent to a printer or kept, as write()
    /// writes: the file is there whole, or as it was before. The document is printed with its changes and
    /// stays as it is. Text stays text and fonts and pictures are taken over as they are; annotations and
    /// form fields are printed as they look, those that are meant to be printed. A page that cannot be taken
    /// over is printed as a picture, and so are all where the document allows no better; one that cannot be
    /// drawn either leaves its sheet blank. The file is not encrypted.
    ///
    /// Fails with `refused` where the document does not allow printing or the file is its own, with
    /// `limitExceeded` for too many sheets, and as write() does. Other threads can read the document
    /// meanwhile; what they change is or is not in the print.
    Result<PrintOutcome> writePrintable(
        const QString& path, const PrintLayout& layout, const Cancellation& cancellation = {},
        const PrintProgress& progress = {});

    /// Gives the form field that the widget belongs to a new value, as takeValue() allows, in all places
    /// where it is shown, and draws its appearances; a failure leaves both as they were. Gives the pages
    /// whose annotations look different now; none when the field has that value already. No script of the
    /// document is run.
    Result<std::vector<int>> setFormValue(const FormWidget& widget, const FormValue& value);

private:
    explicit PDFDocument(std::unique_ptr<DocumentHandle> handle);

    /// Has the document look at the annotation of the page before it is drawn, read or written the next time.
    void noteChange(const std::shared_ptr<PDFAnnotation>& annotation, int page);
    /// Counts what may have changed the page's text since the document was opened. Never waits for it.
    std::uint64_t textChanges(int page) const;

    friend class PDFAnnotation;
    friend class PDFPage;
    friend class TextIndex;

    static Result<std::shared_ptr<PDFDocument>>
    read(const QString& path, std::shared_ptr<SourceFile> source, const Cancellation& cancellation);
    std::shared_ptr<TextIndex> textIndex();

    std::unique_ptr<DocumentHandle> m_handle;
    std::mutex m_textMutex;
    /// Made when it is first needed; guarded by the mutex above.
    std::shared_ptr<TextIndex> m_textIndex;
};

} // namespace pdf
