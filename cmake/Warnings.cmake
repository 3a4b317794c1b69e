# SPDX-FileCopyrightText: The NoctarisTools developers
# SPDX-License-Identifier: MIT
# What every target of this project is compiled with: the warnings, and the program's log form.
add_library(noctaris_warnings INTERFACE)
target_compile_options(noctaris_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Wold-style-cast -Woverloaded-virtual)
if(NOCTARIS_WARNINGS_AS_ERRORS)
    target_compile_options(noctaris_warnings INTERFACE -Werror)
endif()
# The program's own log lines carry no file, line or function, in every build type.
target_compile_definitions(noctaris_warnings INTERFACE QT_NO_MESSAGELOGCONTEXT
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH)
