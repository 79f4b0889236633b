/// What tests need of the operating system.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace KIVRA::TSHARK::TESTING {

/// Sets a variable of this process's environment, or removes it.
void set_environment(const std::string& name, const std::optional<std::string>& value);

/// Keeps a variable's value and puts it back.
class environment_guard {
  public:
    explicit environment_guard(std::string name);
    ~environment_guard();
    environment_guard(const environment_guard&) = delete;
    environment_guard& operator=(const environment_guard&) = delete;

  private:
    std::string name_;
    std::optional<std::string> value_;
};

/// The processes that this one has started and not seen the end of.
std::vector<std::uint32_t> children();

/// Ends a process at once, and waits until it has ended.
void kill_process(std::uint32_t process);

/// A dynamic library, loaded by file name.
class shared_library {
  public:
    /// @throws std::runtime_error when it can't be loaded
    explicit shared_library(const std::filesystem::path& file);
    ~shared_library();
    shared_library(const shared_library&) = delete;
    shared_library& operator=(const shared_library&) = delete;

    /// @throws std::runtime_error when the library has no such symbol
    template <typename Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(symbol(name));
    }

  private:
    void* symbol(const char* name) const;

    void* handle_;
};

/// A path as a host hands it over: in the code page that narrow texts are in.
std::string narrow_text(const std::filesystem::path& path);

}  // namespace KIVRA::TSHARK::TESTING
