// SPDX-License-Identifier: AGPL-3.0-or-later
#include "printing/PrintDialog.h"

#include "controls/TextLabel.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QPageSize>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <array>
#include <numeric>
#include <utility>

namespace quillo {
namespace {

constexpr int mostCopies = 999;

// What is quoted of a text that is wrong.
constexpr qsizetype longestQuote = 30;

constexpr std::array commonSizes = {
    QPageSize::A4, QPageSize::Letter, QPageSize::Legal, QPageSize::A3, QPageSize::A5};

/// For files, and for printers that do not tell what they have. Nothing of it stays blank.
std::vector<Paper> commonPapers()
{
    std::vector<Paper> papers;
    for (const QPageSize::PageSizeId id : commonSizes) {
        const QPageSize size(id);
        papers.push_back({size.key(), size.name(), size.size(QPageSize::Point), {}});
    }
    return papers;
}

/// Of the above.
std::size_t usualPaper()
{
    return QLocale().measurementSystem() == QLocale::ImperialUSSystem ? 1 : 0;
}

QWidget* row(std::initializer_list<QWidget*> widgets)
{
    auto* result = new QWidget;
    auto* layout = new QHBoxLayout(result);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return result;
}

QComboBox* choice(const QString& name, std::initializer_list<std::pair<QString, QVariant>> items)
{
    auto* result = new QComboBox;
    result->setAccessibleName(name);
    for (const auto& [text, value] : items)
        result->addItem(text, value);
    return result;
}

} // namespace

PrintDialog::PrintDialog(int pageCount, int currentPage, const QString& suggestedFile, QWidget* parent)
    : QDialog(parent)
    , m_pageCount(pageCount)
    , m_currentPage(currentPage)
    , m_form(new QFormLayout)
{
    setWindowTitle(tr("Print"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 24, 24, 16);
    column->setSpacing(12);
    // Rows come and go with the printer.
    column->setSizeConstraint(QLayout::SetFixedSize);
    m_form->setHorizontalSpacing(12);
    m_form->setVerticalSpacing(12);
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    column->addLayout(m_form);
    addTarget(*m_form, suggestedFile);
    addPages(*m_form, currentPage);
    addCopies(*m_form);
    addPaper(*m_form);
    m_complaint = new TextLabel(QString(), TextStyle::subheadline, ThemeColor::red);
    m_complaint->setWrapping(true);
    m_complaint->hide();
    column->addWidget(m_complaint);
    addButtons();
    followTarget();
}

void PrintDialog::addTarget(QFormLayout& form, const QString& suggestedFile)
{
    m_target = choice(tr("Printer"), {{tr("Print to File (PDF)"), QString()}});
    m_target->setMinimumWidth(320);
    form.addRow(tr("Printer:"), m_target);
    connect(m_target, &QComboBox::currentIndexChanged, this, &PrintDialog::followTarget);

    m_note = new TextLabel(tr("Looking for printers…"), TextStyle::caption, ThemeColor::secondaryText);
    form.addRow(QString(), m_note);

    m_file = new QLineEdit(QDir::toNativeSeparators(suggestedFile));
    m_file->setAccessibleName(tr("File"));
    auto* choose = new QPushButton(tr("Choose…"));
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &PrintDialog::chooseFile);
    m_fileRow = row({m_file, choose});
    form.addRow(tr("File:"), m_fileRow);
}

void PrintDialog::addPages(QFormLayout& form, int currentPage)
{
    m_allPages =
        new QRadioButton(m_pageCount == 1 ? tr("The only page") : tr("All %1 pages").arg(m_pageCount));
    m_thisPage = new QRadioButton(tr("Current page (%1)").arg(currentPage + 1));
    m_somePages = new QRadioButton(tr("Pages"));
    m_ranges = new QLineEdit;
    m_ranges->setAccessibleName(tr("Page ranges"));
    m_ranges->setPlaceholderText(tr("such as 1-3, 5, 8-"));
    m_ranges->setToolTip(
        tr("Pages are printed in the order given here: 3-1 prints page 3, then 2, then 1.\n"
           "A range without an end goes to the last page, one without a beginning starts at the first."));
    m_allPages->setChecked(true);
    m_thisPage->setEnabled(currentPage >= 0);
    // One choice in two rows.
    auto* group = new QButtonGroup(this);
    for (QRadioButton* button : {m_allPages, m_thisPage, m_somePages})
        group->addButton(button);
    form.addRow(tr("Pages:"), row({m_allPages, m_thisPage}));
    form.addRow(QString(), row({m_somePages, m_ranges}));
    connect(m_ranges, &QLineEdit::textEdited, this, [this] {
        m_somePages->setChecked(true);
        // It was about what stood there before.
        m_complaint->hide();
    });
}

void PrintDialog::addCopies(QFormLayout& form)
{
    m_copies = new QSpinBox;
    m_copies->setAccessibleName(tr("Copies"));
    m_copies->setRange(1, mostCopies);
    m_collates = new QCheckBox(tr("Collate"));
    m_collates->setChecked(true);
    m_collates->setEnabled(false);
    m_reverses = new QCheckBox(tr("Last page first"));
    connect(m_copies, &QSpinBox::valueChanged, m_collates, [this](int copies) {
        m_collates->setEnabled(copies > 1);
    });
    form.addRow(tr("Copies:"), row({m_copies, m_collates, m_reverses}));
}

void PrintDialog::addPaper(QFormLayout& form)
{
    m_paper = choice(tr("Paper"), {});
    form.addRow(tr("Paper:"), m_paper);
    m_sides = choice(
        tr("Two-sided"),
        {{tr("One side"), QStringLiteral("one-sided")},
         {tr("Both sides, turned at the long edge"), QStringLiteral("two-sided-long-edge")},
         {tr("Both sides, turned at the short edge"), QStringLiteral("two-sided-short-edge")}});
    form.addRow(tr("Sides:"), m_sides);
    m_colour = choice(
        tr("Colour"), {{tr("In colour"), QStringLiteral("color")},
                       {tr("In shades of grey"), QStringLiteral("monochrome")}});
    form.addRow(tr("Colour:"), m_colour);
    m_scaling = choice(
        tr("Scaling"), {{tr("Scale to fit"), int(pdf::PageScaling::shrinkToFit)},
                        {tr("Scale to fit, small pages too"), int(pdf::PageScaling::fit)},
                        {tr("Actual size"), int(pdf::PageScaling::actualSize)}});
    form.addRow(tr("Scaling:"), m_scaling);
    m_turns = new QCheckBox(tr("Auto-rotate pages"));
    m_turns->setChecked(true);
    form.addRow(QString(), m_turns);
}

void PrintDialog::addButtons()
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Cancel)->setIcon(QIcon());
    auto* print = buttons->addButton(tr("Print"), QDialogButtonBox::AcceptRole);
    layout()->addWidget(buttons);
    // Only a button that is already part of the dialog can become its default.
    print->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &PrintDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &PrintDialog::reject);
}

void PrintDialog::setPrinters(const PrinterListing& listing)
{
    m_printers = listing.printers;
    m_note->setVisible(!listing.error.isEmpty() || m_printers.empty());
    m_note->setWrapping(!listing.error.isEmpty());
    m_note->setText(listing.error.isEmpty() ? tr("There are no printers.") : tr("Printers cannot be used."));
    int usual = -1;
    for (std::size_t i = 0; i < m_printers.size(); ++i) {
        const auto index = static_cast<int>(i);
        m_target->insertItem(index, m_printers[i].description);
        if (m_printers[i].isDefault)
            usual = index;
    }
    // Whoever has begun to choose is not interrupted.
    if (usual >= 0 && !m_file->isModified())
        m_target->setCurrentIndex(usual);
    followTarget();
}

const PrinterDescription* PrintDialog::printer() const
{
    const auto index = static_cast<std::size_t>(m_target->currentIndex());
    return index < m_printers.size() ? &m_printers[index] : nullptr;
}

void PrintDialog::followTarget()
{
    // The first item comes before there is anything else.
    if (!m_turns)
        return;
    const PrinterDescription* chosen = printer();
    const auto show = [this](QWidget* field, bool isShown) {
        field->setVisible(isShown);
        m_form->labelForField(field)->setVisible(isShown);
    };
    show(m_fileRow, !chosen);
    show(m_sides, chosen && chosen->printsTwoSided);
    show(m_colour, chosen && chosen->printsColour);
    if (chosen && !chosen->papers.empty())
        offerPapers(chosen->papers, chosen->usualPaper);
    else
        offerPapers(commonPapers(), usualPaper());
}

void PrintDialog::offerPapers(const std::vector<Paper>& papers, std::size_t usual)
{
    m_papers = papers;
    m_paper->clear();
    for (const Paper& paper : m_papers)
        m_paper->addItem(paper.name);
    m_paper->setCurrentIndex(static_cast<int>(usual));
}

void PrintDialog::chooseFile()
{
    auto* panel = new QFileDialog(this, tr("Print to File"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setNameFilter(tr("PDF documents (*.pdf *.PDF)"));
    panel->setDefaultSuffix(QStringLiteral("pdf"));
    panel->selectFile(m_file->text());
    connect(panel, &QFileDialog::fileSelected, this, [this](const QString& path) {
        m_file->setText(QDir::toNativeSeparators(path));
        // The panel has asked.
        m_replacedFile = path;
    });
    panel->open();
}

std::variant<std::vector<int>, pdf::WrongPageRange> PrintDialog::pages() const
{
    if (m_somePages->isChecked())
        return pdf::parsePageRanges(m_ranges->text(), m_pageCount);
    if (m_thisPage->isChecked())
        return std::vector{m_currentPage};
    std::vector<int> all(static_cast<std::size_t>(m_pageCount));
    std::iota(all.begin(), all.end(), 0);
    return all;
}

PrintSettings PrintDialog::settings() const
{
    PrintSettings settings;
    if (auto chosen = pages(); auto* list = std::get_if<std::vector<int>>(&chosen))
        settings.layout.pages = std::move(*list);
    settings.layout.scaling = static_cast<pdf::PageScaling>(m_scaling->currentData().toInt());
    settings.layout.reverses = m_reverses->isChecked();
    const auto paper = static_cast<std::size_t>(m_paper->currentIndex());
    if (paper < m_papers.size()) {
        settings.layout.paper = m_papers[paper].size;
        settings.layout.margins = m_papers[paper].margins;
    }
    const PrinterDescription* chosen = printer();
    if (!chosen) {
        settings.file = QDir::home().absoluteFilePath(QDir::fromNativeSeparators(m_file->text().trimmed()));
        settings.layout.copies = m_copies->value();
        settings.layout.collates = m_collates->isChecked();
        settings.layout.turning = m_turns->isChecked() ? pdf::PageTurning::paper : pdf::PageTurning::none;
        return settings;
    }
    settings.printer = chosen->name;
    settings.printerCopies = m_copies->value();
    settings.layout.turning = m_turns->isChecked() ? pdf::PageTurning::page : pdf::PageTurning::none;
    // The sheets have their final size.
    settings.printerOptions = {QStringLiteral("print-scaling=none")};
    const auto add = [&](const char* name, const QString& value) {
        settings.printerOptions.append(QLatin1String(name) + u'=' + value);
    };
    if (paper < m_papers.size())
        add("media", m_papers[paper].key);
    if (m_copies->value() > 1)
        add("collate", m_collates->isChecked() ? QStringLiteral("true") : QStringLiteral("false"));
    if (chosen->printsTwoSided)
        add("sides", m_sides->currentData().toString());
    if (chosen->printsColour)
        add("print-color-mode", m_colour->currentData().toString());
    return settings;
}

void PrintDialog::accept()
{
    const auto chosen = pages();
    if (const auto* wrong = std::get_if<pdf::WrongPageRange>(&chosen)) {
        m_ranges->setFocus();
        return complain(complaintAbout(*wrong));
    }
    if (printer())
        return QDialog::accept();
    if (m_file->text().trimmed().isEmpty()) {
        m_file->setFocus();
        return complain(tr("Enter a name for the file."));
    }
    const QString file = settings().file;
    if (QFileInfo::exists(file) && QFileInfo(file) != QFileInfo(m_replacedFile))
        return confirmReplacing();
    QDialog::accept();
}

QString PrintDialog::complaintAbout(const pdf::WrongPageRange& range) const
{
    if (range.part.isEmpty())
        return tr("Enter pages of the document, such as 1-3, 5, 8-.");
    const QString part =
        range.part.size() <= longestQuote ? range.part : range.part.left(longestQuote - 1) + QChar(u'\u2026');
    if (range.reason == pdf::WrongPageRange::Reason::notARange)
        return tr("%1: this names no pages. Enter pages of the document, such as 1-3, 5, 8-.").arg(part);
    return m_pageCount == 1 ? tr("%1: the document has only one page.").arg(part)
                            : tr("%1: the document has %2 pages.").arg(part).arg(m_pageCount);
}

void PrintDialog::confirmReplacing()
{
    const QString file = settings().file;
    auto* question = new QMessageBox(
        QMessageBox::Warning, tr("Print to File"),
        tr("“%1” already exists. Do you want to replace it?").arg(QFileInfo(file).fileName()),
        QMessageBox::Cancel, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    auto* replace = question->addButton(tr("Replace"), QMessageBox::AcceptRole);
    connect(replace, &QAbstractButton::clicked, this, [this, file] {
        m_replacedFile = file;
        accept();
    });
    question->open();
}

void PrintDialog::complain(const QString& text)
{
    m_complaint->setText(text);
    m_complaint->show();
}

} // namespace quillo
