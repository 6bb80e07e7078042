#pragma once

#include <QtGlobal>

#include <cstring>

/// The one function that a loadable module exports, answered by `moduleEntry`. What crosses this border are
/// contracts and values; either side has its own copy of every room it links.
extern "C" Q_DECL_EXPORT void* vistrelModule(const char* version);

/// The module's implementation of `Contract` for the program it was built with, null for any other.
template<class Contract, class Implementation>
void* moduleEntry(const char* version) {
    static Implementation implementation;
    return std::strcmp(version, VISTREL_VERSION) == 0 ? static_cast<Contract*>(&implementation) : nullptr;
}
