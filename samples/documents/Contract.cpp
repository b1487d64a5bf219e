// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "writer/Document.h"

#include <array>

namespace samples {
namespace {

constexpr double left = 80;
constexpr double width = 435;
constexpr double indent = 26;
constexpr double leading = 14.2;
constexpr double bottom = 78;

const Colour ink = colour(0x1A1A1A);
const Colour quiet = colour(0x666666);

struct Clause
{
    std::string_view heading;
    std::vector<std::string_view> paragraphs;
};

const std::array<std::string_view, 2> recitals = {
    "WHEREAS, the Owner holds title to the premises known as the Old Signal House, Harbour Row, together "
    "with "
    "the yard and the outbuildings thereof; and",
    "WHEREAS, the Keeper is willing to maintain the premises and the aforementioned outbuildings, and to "
    "utilize them as a workshop, upon the terms set out herein;",
};

const std::array<Clause, 8> clauses = {{
    {"Engagement",
     {"Pursuant to the resolution of the trustees of the Owner dated 14 November 2025, the Owner hereby "
      "engages "
      "the Keeper, and the Keeper accepts such engagement, to preserve the premises in sound order.",
      "The engagement shall commence on 1 February 2026 and, unless ended sooner under clause 7, shall "
      "continue "
      "for a term of thirty-six months."}},
    {"Duties of the Keeper",
     {"The Keeper shall inspect the roof, the gutters and the drains within seven days of every storm and "
      "must "
      "report any defect to the Owner in writing within a further three days.",
      "The Keeper shall not alter the fabric of the building, nor permit any other person to do so, save "
      "with the "
      "prior written consent of the Owner, whereby such consent shall not be withheld without good cause."}},
    {"Remuneration",
     {"In consideration of the services rendered hereunder the Owner shall pay to the Keeper a remuneration "
      "of "
      "£1,450.00 per quarter, payable in arrears within fourteen days after the end of each quarter.",
      "The aggregate amount payable in any one year shall not exceed £5,800.00, notwithstanding any increase "
      "in "
      "the cost of materials. Reasonable outlays for materials shall be refunded against receipts."}},
    {"Use of the premises",
     {"The Keeper may utilize the ground floor and the yard as a workshop for the repair of small craft. The "
      "Keeper shall store no fuel, gas or explosive substance therein."}},
    {"Insurance and liability",
     {"The Owner shall insure the premises against fire, flood and tempest. The Keeper shall hold insurance "
      "for "
      "liability toward third parties in an amount not less than 1,000,000 GBP and shall produce evidence "
      "thereof "
      "upon request."}},
    {"Confidential matters",
     {"Neither party shall disclose the contents of the plans, surveys and accounts exchanged hereafter, "
      "except "
      "where it is required to do so by law. Matters heretofore published are not affected."}},
    {"Termination",
     {"Either party may terminate this Agreement by three months’ notice in writing. The Owner may terminate "
      "it "
      "with immediate effect where the Keeper is in breach of clause 2 and has not remedied that breach "
      "within "
      "twenty-eight days of being asked to do so.",
      "Upon termination the Keeper shall deliver up the keys and all tools belonging to the Owner, "
      "hereinafter "
      "“the Inventory”, by the date stated in the notice."}},
    {"General",
     {"This Agreement sets out the whole of what the parties have agreed. It may be varied only in writing "
      "signed "
      "by both of them. It is governed by the law of England and Wales, notwithstanding the place of "
      "signing."}},
}};

class Contract
{
public:
    Contract()
        : m_document(
              {"Agreement for the keeping of the Old Signal House", "Penrose & Tull, Solicitors", "en-GB"})
    {}

    std::string make()
    {
        startPage();
        drawTitle();
        for (const std::string_view recital : recitals)
            m_y = canvas().paragraph(left, m_y, width, leading, text(), recital, Alignment::justified) - 6;
        m_y = canvas().paragraph(
                  left, m_y, width, leading, text(), "NOW, THEREFORE, the parties agree as follows:") -
              8;
        int index = 0;
        for (const Clause& clause : clauses)
            drawClause(++index, clause);
        drawSignatures();
        return m_document.finish();
    }

private:
    Canvas& canvas() { return m_page->canvas; }
    TextStyle text() const { return {m_document.standardFont(Typeface::serif), 10.8, ink}; }
    TextStyle bold() const { return {m_document.standardFont(Typeface::serifBold), 10.8, ink}; }
    TextStyle small() const { return {m_document.standardFont(Typeface::serifItalic), 9, quiet}; }

    void startPage()
    {
        m_page = &m_document.addPage(a4);
        ++m_pageNumber;
        m_y = 760;
        canvas().line(left, 60, left + width, 60, 0.4, quiet);
        canvas().text(left, 47, small(), "Agreement, Old Signal House");
        canvas().text(left + width, 47, small(), "Page " + std::to_string(m_pageNumber), Alignment::right);
    }

    void drawTitle()
    {
        const TextStyle title = {m_document.standardFont(Typeface::serifBold), 17, ink};
        canvas().text(a4.width / 2, m_y, title, "AGREEMENT FOR THE KEEPING OF PREMISES", Alignment::centre);
        m_y = canvas().paragraph(
                  left, m_y - 32, width, leading, text(),
                  "THIS AGREEMENT is made on 12 January 2026 between the Harbour Row Preservation Trust, a "
                  "charity "
                  "registered in England (“the Owner”), and Rosalind Achebe, boatbuilder, of 3 Quay Street "
                  "(“the "
                  "Keeper”).",
                  Alignment::justified) -
              6;
    }

    double heightOf(std::string_view paragraph, double available) const
    {
        return static_cast<double>(wrapped(text(), paragraph, available).size()) * leading;
    }

    void drawClause(int index, const Clause& clause)
    {
        // A heading never stands alone at the foot of a page.
        if (m_y - 18 - heightOf(clause.paragraphs.front(), width - indent) < bottom)
            startPage();
        const std::string prefix = std::to_string(index) + ".";
        canvas().text(left, m_y, bold(), prefix);
        canvas().text(left + indent, m_y, bold(), clause.heading);
        m_y -= 17;
        int sub = 0;
        for (const std::string_view paragraph : clause.paragraphs) {
            if (m_y - heightOf(paragraph, width - indent) + leading < bottom)
                startPage();
            canvas().text(left, m_y, text(), prefix + std::to_string(++sub));
            m_y = canvas().paragraph(
                      left + indent, m_y, width - indent, leading, text(), paragraph, Alignment::justified) -
                  4;
        }
        m_y -= 6;
    }

    void drawSignatures()
    {
        m_y = canvas().paragraph(
            left, m_y - 6, width, leading, text(),
            "IN WITNESS WHEREOF the parties have set their hands on the date first written above.");
        const double lineY = m_y - 44;
        double x = left;
        for (const std::string_view party :
             {"For the Owner, authorized signature", "The Keeper, Rosalind Achebe"}) {
            canvas().line(x, lineY, x + 195, lineY, 0.6, ink);
            canvas().text(x, lineY - 13, small(), party);
            x += width - 195;
        }
    }

    Document m_document;
    Page* m_page = nullptr;
    int m_pageNumber = 0;
    double m_y = 0;
};

} // namespace

std::string makeContract()
{
    return Contract().make();
}

} // namespace samples
