#pragma once

#include <gio/gio.h>

#include <memory>

struct UnrefObject {
    void operator()(gpointer object) const { g_object_unref(object); }
};
/// Owns one reference to a GObject.
template<class T>
using GObjectPointer = std::unique_ptr<T, UnrefObject>;
