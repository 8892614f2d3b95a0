#pragma once

namespace kadrona::imaging {

/// Gives an object of a C library back by the library's own function: the deleter of a
/// std::unique_ptr.
template <auto Destroy>
struct Release {
    void operator()(auto* object) const { Destroy(object); }
};

}  // namespace kadrona::imaging
