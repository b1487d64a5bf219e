// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/PageRanges.h"
#include "printing/PrintSettings.h"
#include "printing/PrintersModule.h"

#include <QDialog>

#include <variant>
#include <vector>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QRadioButton;
class QSpinBox;

namespace quillo {

class TextLabel;

/// Asks what to print and on which printer, or into which file. It opens with the file alone; printers join
/// it as soon as they are known.
class PrintDialog : public QDialog
{
    Q_OBJECT

public:
    /// `currentPage` is zero-based; `suggestedFile` is a path.
    PrintDialog(int pageCount, int currentPage, const QString& suggestedFile, QWidget* parent);

    void setPrinters(const PrinterListing& listing);

    /// What the user has chosen; to be asked once the dialog is accepted.
    PrintSettings settings() const;

    void accept() override;

private:
    void addTarget(QFormLayout& form, const QString& suggestedFile);
    void addPages(QFormLayout& form, int currentPage);
    void addCopies(QFormLayout& form);
    void addPaper(QFormLayout& form);
    void addButtons();
    /// Null where a file is to be written.
    const PrinterDescription* printer() const;
    /// What the user has chosen, or what is wrong with the ranges that were typed.
    std::variant<std::vector<int>, pdf::WrongPageRange> pages() const;
    QString complaintAbout(const pdf::WrongPageRange& range) const;
    void followTarget();
    void offerPapers(const std::vector<Paper>& papers, std::size_t usual);
    void chooseFile();
    void confirmReplacing();
    void complain(const QString& text);

    const int m_pageCount;
    const int m_currentPage;
    std::vector<PrinterDescription> m_printers;
    std::vector<Paper> m_papers;
    /// The file that the user has agreed to replace.
    QString m_replacedFile;
    QFormLayout* m_form;
    QComboBox* m_target = nullptr;
    TextLabel* m_note = nullptr;
    QWidget* m_fileRow = nullptr;
    QLineEdit* m_file = nullptr;
    QRadioButton* m_allPages = nullptr;
    QRadioButton* m_thisPage = nullptr;
    QRadioButton* m_somePages = nullptr;
    QLineEdit* m_ranges = nullptr;
    QSpinBox* m_copies = nullptr;
    QCheckBox* m_collates = nullptr;
    QCheckBox* m_reverses = nullptr;
    QComboBox* m_paper = nullptr;
    QComboBox* m_sides = nullptr;
    QComboBox* m_colour = nullptr;
    QComboBox* m_scaling = nullptr;
    QCheckBox* m_turns = nullptr;
    TextLabel* m_complaint = nullptr;
};

} // namespace quillo
