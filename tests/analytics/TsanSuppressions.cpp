// SPDX-License-Identifier: AGPL-3.0-or-later

// Qt Network works on three threads of its own, behind locks that the thread sanitizer does not see. In this
// program it therefore overlooks what these libraries do by calling the C library; what the project's own
// code does is watched as everywhere.
extern "C" const char* __tsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __tsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "called_from_lib:libQt6Core.so\n"
           "called_from_lib:libQt6Network.so\n"
           "called_from_lib:libproxy.so\n"
           "called_from_lib:libglib-2.0.so\n"
           "called_from_lib:libcrypto.so\n"
           "called_from_lib:libssl.so\n";
}
