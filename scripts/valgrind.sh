#!/usr/bin/env bash
# Installs what is missing, builds the release tests of the PDF engine and runs some of them under valgrind, which
# sees into MuPDF where the sanitizers do not; fails on any error and on memory that is lost.
#   scripts/valgrind.sh [FILTER]
# FILTER names other tests, as --gtest_filter does.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

# Where objects of MuPDF are held, handed over and given up, also when an operation fails or is cancelled.
tests='CancellationTest.*:FormFieldsTest.*:FoundFieldTest.*:PDFAnnotationTest.*:PDFLinkTest.*:PlacedFieldTest.*'
# Tests that fill the memory, list very much or run several threads tell nothing here and take long.
without='*WhereverAChangeFails:*BeyondTheMost*:*OfAThreadThat*'
filter=${1:-$tests-$without}

scripts/packages.sh build run test valgrind
scripts/build.sh release pdf_tests

# What Qt and fontconfig keep until the end of the process is still reachable, and no report.
valgrind --quiet --error-exitcode=1 --leak-check=full --show-leak-kinds=definite --errors-for-leak-kinds=definite \
    --num-callers=30 --suppressions=tests/valgrind.supp build/release/bin/pdf_tests --gtest_filter="$filter"
echo "valgrind found nothing."
