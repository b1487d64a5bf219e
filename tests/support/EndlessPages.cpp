// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/EndlessPages.h"

void addEndlessPages(PDFWriter& writer, int count)
{
    // Forms of which each draws the next one ten times, thirty deep.
    int form = writer.addStream("0 0 1 1 re f", "/Type/XObject/Subtype/Form/BBox[0 0 9 9]");
    for (int i = 0; i < 30; ++i) {
        form = writer.addStream(
            "/X Do /X Do /X Do /X Do /X Do /X Do /X Do /X Do /X Do /X Do",
            "/Type/XObject/Subtype/Form/BBox[0 0 9 9]/Resources<</XObject<</X " + QByteArray::number(form) +
                " 0 R>>>>");
    }
    writer.setResources("/XObject<</X " + QByteArray::number(form) + " 0 R>>");
    for (int i = 0; i < count; ++i)
        writer.addPage("/X Do");
    writer.setResources({});
}
