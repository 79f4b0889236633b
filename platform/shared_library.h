/// A shared library that is loaded while the program runs.
#pragma once

#include <filesystem>
#include <memory>

namespace KIVRA::TSHARK::PLATFORM {

/// What the names of shared libraries end in, ".so" for example.
extern const char* const shared_library_extension;

/// Unloaded with the object.
class shared_library {
  public:
    /// @param file found as a path, never in the system's folders of libraries
    /// @throws std::runtime_error with the system's reason when it can't be loaded
    explicit shared_library(const std::filesystem::path& file);

    /// A function by its exported name; the caller names its type.
    /// @throws std::runtime_error with the system's reason when the library has none of that name
    template <typename Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(symbol(name));
    }

  private:
    struct unloader {
        void operator()(void* handle) const;
    };

    void* symbol(const char* name) const;

    std::unique_ptr<void, unloader> handle_;
};

}  // namespace KIVRA::TSHARK::PLATFORM
