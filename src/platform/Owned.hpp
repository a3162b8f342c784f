#pragma once
// An object a C library handed out, owned until scope ends and then handed
// back with that library's own function: Owned<hb_font_t, hb_font_destroy>.

#include <memory>

namespace plakard {

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

template <typename T, auto release>
using Owned = std::unique_ptr<T, Releaser<release>>;

}  // namespace plakard
