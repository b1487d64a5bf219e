// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "writer/Document.h"

#include <string>
#include <string_view>
#include <vector>

namespace samples {

/// The interactive form of a document. Every field carries its appearance, so viewers that make none of their
/// own show it all the same.
class FormFields
{
public:
    /// What all fields have: the name in the data, and the text that says to a person what belongs there.
    struct Identity
    {
        std::string_view name;
        std::string_view tooltip;
        bool required = false;
    };

    struct TextOptions
    {
        std::string_view value;
        bool multiline = false;
        bool password = false;
        /// The number of boxes, one for each character; 0 is an ordinary field.
        int combBoxes = 0;
        /// 0 is no limit.
        int maximumLength = 0;
    };

    struct RadioButton
    {
        Box box;
        /// The button's value in the data.
        std::string_view state;
    };

    explicit FormFields(Document& document);

    void addText(Page& page, const Box& box, const Identity& identity, const TextOptions& options);
    void addCheckBox(Page& page, const Box& box, const Identity& identity, bool checked);
    /// `selected` is the state of the button that is on, or empty.
    void addRadioButtons(
        Page& page, const Identity& identity, const std::vector<RadioButton>& buttons,
        std::string_view selected);
    /// A pop-up list; with `editable` a text of one's own can be entered as well.
    void addComboBox(
        Page& page, const Box& box, const Identity& identity, const std::vector<std::string_view>& choices,
        std::string_view value, bool editable);
    /// A list in which several entries can be selected.
    void addListBox(
        Page& page, const Box& box, const Identity& identity, const std::vector<std::string_view>& choices,
        const std::vector<std::size_t>& selected);
    void addSignature(Page& page, const Box& box, const Identity& identity);

    /// Writes the form into the document's catalog. To be called once, after the last field.
    void finish();

private:
    PdfFile::Ref addAppearance(const Box& box, const std::string& content);
    void addField(Page& page, const std::string& entries, const Box& box, const std::string& appearance);

    Document& m_document;
    PdfFile::Ref m_textFont;
    PdfFile::Ref m_markFont;
    std::vector<PdfFile::Ref> m_fields;
};

} // namespace samples
