// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "support/PDFWriter.h"

/// Adds pages whose content does not end in the time that anybody has, with no text that is ever reached. The
/// writer's resources are empty afterwards.
void addEndlessPages(PDFWriter& writer, int count);
