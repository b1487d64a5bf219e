// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <memory>
#include <mutex>
#include <optional>

class QPainter;

namespace pdf {

class PDFDocument;
class PDFPage;

/// Keys of an annotation's dictionary whose values can be set as they are.
enum class PDFAnnotationKey {
    /// The width of the border in points. The border has no colour, so others draw none.
    borderStyle,
};

/// Something that lies on a page: a free text, a form field, a stamp, or one of the many other kinds that a
/// file may have. An annotation is made with its bounds and subtype, given its properties, and added to a
/// page; those that were in the file come from PDFPage::annotations(). It is the same object as long as
/// somebody holds it or it has changes that have not reached the document yet.
///
/// Safe from any thread. Setting a property never waits for the document: what was set is there for the next
/// display list, the next reading of the page and the next write.
///
/// An annotation that was made here always gets an appearance stream that shows what draw() draws, so it
/// looks alike everywhere. One from the file keeps the appearance that it has, fitted to its bounds. What a
/// form field shows is made from what it holds, and anew whenever its size, its look or its value changes.
class PDFAnnotation : public std::enable_shared_from_this<PDFAnnotation>
{
public:
    enum class Subtype {
        freeText,
        /// A form field. One that is made here is a text field of one line.
        widget,
        stamp,
        /// Any other, found in a file.
        other,
    };

    /// Not on a page yet. `bounds` are in page space. A subtype of `other` cannot be made.
    PDFAnnotation(const QRectF& bounds, Subtype subtype);
    virtual ~PDFAnnotation();
    PDFAnnotation(const PDFAnnotation&) = delete;
    PDFAnnotation& operator=(const PDFAnnotation&) = delete;

    Subtype subtype() const { return m_subtype; }
    /// The subtype by its name in the file, such as "Widget" or "Highlight".
    QString type() const { return m_type; }
    /// The page that it is on; null when it is on none or the document is gone.
    std::shared_ptr<PDFPage> page() const;

    /// In page space, normalised. Nothing keeps an annotation within its page.
    QRectF bounds() const;
    void setBounds(const QRectF& bounds);

    /// What a free text says, and what is said about any other annotation.
    QString contents() const;
    void setContents(const QString& contents);

    // What a free text or a form field that was made here looks like. Font sizes are points of the page,
    // whatever the screen's resolution. One from the file has the defaults here. A form field is shown in
    // Helvetica or, for a font of fixed pitch, in Courier, because these are what it is filled in with
    // everywhere; where they lack a character, the system's font takes their place.

    QFont font() const;
    void setFont(const QFont& font);
    QColor fontColor() const;
    void setFontColor(const QColor& color);
    /// The fill of a free text; transparent unless it is set.
    QColor color() const;
    void setColor(const QColor& color);
    /// Qt::AlignLeft, Qt::AlignHCenter or Qt::AlignRight.
    Qt::AlignmentFlag alignment() const;
    void setAlignment(Qt::AlignmentFlag alignment);

    // Form fields.

    /// What the field holds, also after it was filled in by PDFDocument::setFormValue(). A field from the
    /// file takes a new value as that does; one that it refuses is dropped when the document hears of it.
    QString widgetStringValue() const;
    void setWidgetStringValue(const QString& value);
    /// Transparent unless it is set.
    QColor backgroundColor() const;
    void setBackgroundColor(const QColor& color);
    bool isReadOnly() const;
    void setReadOnly(bool isReadOnly);

    void setValue(int value, PDFAnnotationKey key);

    /// The size in points of a text of one or more lines as draw() draws it in a font.
    static QSizeF textSize(const QString& text, const QFont& font);

protected:
    /// Draws a free text or a stamp in a rectangle of the given size in points, upper left corner at the
    /// origin, y growing downwards. May be called on any thread and with the document locked, so it must not
    /// call the document, its pages or a setter. Images keep their transparency. Needs a QGuiApplication.
    virtual void draw(QPainter& painter, const QSizeF& size) const;

private:
    friend class AnnotationStore;
    friend class PDFPage;

    struct Properties
    {
        QRectF bounds;
        QString contents;
        QFont font;
        QColor fontColor = Qt::black;
        QColor color = Qt::transparent;
        Qt::AlignmentFlag alignment = Qt::AlignLeft;
        QString widgetStringValue;
        QColor backgroundColor = Qt::transparent;
        bool isReadOnly = false;
        std::optional<int> borderWidth;
    };

    /// One from a file.
    PDFAnnotation(const QString& type, Subtype subtype);

    /// What the document has not been told yet.
    struct Changes
    {
        bool bounds = false;
        bool look = false;
        bool value = false;
        bool isReadOnly = false;
    };

    template <typename Value>
    Value get(Value Properties::*member) const;
    template <typename Value>
    void set(Value Properties::*member, const Value& value, bool Changes::*change = &Changes::look);

    const QString m_type;
    const Subtype m_subtype;
    /// Of one that was made here, the appearance is made here too.
    const bool m_isOwn;

    mutable std::mutex m_mutex;
    // Guarded by the mutex.
    Properties m_properties;
    Changes m_changes;
    std::weak_ptr<PDFDocument> m_document;
    /// -1 on no page.
    int m_pageIndex = -1;
};

} // namespace pdf
