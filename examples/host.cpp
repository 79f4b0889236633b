/// A small host in C++20: loads the plug-in, hands it one record, and prints what comes back. The
/// library and the instance are released by their owners' destructors.
///
///     host_cpp PLUGIN TSHARK_DIRECTORY PROFILE
///
/// Link with dl where the C library asks for it, never with the plug-in. On Windows LoadLibraryA,
/// GetProcAddress and FreeLibrary stand for dlopen, dlsym and dlclose.
#include <dlfcn.h>

#include <array>
#include <cstdint>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include <kivra/tshark_sink.h>

namespace {

/// System information of an LTE-M cell with block 2: the idle paging cycle and the repetitions.
constexpr std::array<std::uint8_t, 29> system_information{
    0x00, 0x00, 0x4c, 0xa1, 0xbf, 0x6c, 0x88, 0x00, 0xca, 0x12, 0x72, 0x02, 0x00, 0x00, 0x10,
    0x01, 0x82, 0x9a, 0xa5, 0xab, 0x84, 0x88, 0x00, 0x48, 0x00, 0x8b, 0x6e, 0x20, 0x07};

/// The loaded plug-in; must outlive its sinks.
class plugin {
  public:
    explicit plugin(const std::string& file)
        : library_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
        if (library_ == nullptr) {
            throw std::runtime_error(dlerror());
        }
    }

    /// A function by its name, for example find<kivra_sink_data_function>("kivra_sink_data").
    template <typename Function>
    Function* find(const char* name) const {
        void* symbol = dlsym(library_.get(), name);
        if (symbol == nullptr) {
            throw std::runtime_error(dlerror());
        }
        return reinterpret_cast<Function*>(symbol);
    }

  private:
    struct closer {
        void operator()(void* library) const { dlclose(library); }
    };
    std::unique_ptr<void, closer> library_;
};

void copy_error(void* user_data, const kivra_error* error) {
    *static_cast<std::string*>(user_data) = error->message;
}

/// One instance of the sink.
class sink {
  public:
    sink(const plugin& plugin, const std::string& tshark_directory, const std::string& profile)
        : data_(plugin.find<kivra_sink_data_function>("kivra_sink_data")),
          complete_(plugin.find<kivra_sink_complete_function>("kivra_sink_complete")),
          get_last_error_(
              plugin.find<kivra_sink_get_last_error_function>("kivra_sink_get_last_error")),
          context_(nullptr, plugin.find<kivra_sink_release_function>("kivra_sink_release")) {
        std::string reason;
        kivra_init_parameters parameters{};
        parameters.entries[0].key = "tshark_directory";
        parameters.entries[0].value = tshark_directory.c_str();
        parameters.entries[1].key = "file_path";
        parameters.entries[1].value = profile.c_str();
        parameters.count = 2;
        parameters.log_callback = [](const void*, void*, std::uint32_t level, const char* message) {
            std::cerr << "log (" << level << "): " << message << '\n';
        };
        parameters.error_user_data = &reason;
        parameters.error_callback = copy_error;

        kivra_sink_context* context = nullptr;
        const auto init = plugin.find<kivra_sink_init_function>("kivra_sink_init");
        if (init(&context, &parameters) != KIVRA_RESULT_SUCCESS) {
            throw std::runtime_error(reason);
        }
        context_.reset(context);
    }

    /// The result document of a record; empty when it has none.
    std::string analyse(const kivra_trace_chunk& chunk) {
        std::string text;
        const auto copy_text = [](void* user_data, const kivra_annotated_chunk* annotated) {
            *static_cast<std::string*>(user_data) = annotated->text;
        };
        if (data_(context_.get(), &chunk, nullptr, nullptr, &text, copy_text) !=
            KIVRA_RESULT_SUCCESS) {
            get_last_error_(context_.get(), &text, copy_error);
            throw std::runtime_error(text);
        }
        return text;
    }

    void complete() { complete_(context_.get()); }

  private:
    kivra_sink_data_function* data_;
    kivra_sink_complete_function* complete_;
    kivra_sink_get_last_error_function* get_last_error_;
    std::unique_ptr<kivra_sink_context, kivra_sink_release_function*> context_;
};

void describe(const plugin& plugin) {
    plugin.find<kivra_sink_version_function>("kivra_sink_version")(
        nullptr, [](void*, const kivra_version_info* version) {
            std::cout << version->description << ' ' << version->major << '.' << version->minor
                      << '.' << version->patch << '\n';
        });
    plugin.find<kivra_sink_init_parameters_function>("kivra_sink_init_parameters")(
        nullptr, [](void*, const char* schema) { std::cout << schema << '\n'; });
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: host_cpp PLUGIN TSHARK_DIRECTORY PROFILE\n";
        return 1;
    }
    try {
        const plugin plugin(argv[1]);
        describe(plugin);

        sink sink(plugin, argv[2], argv[3]);
        kivra_trace_chunk chunk{};
        chunk.data = system_information.data();
        chunk.size = system_information.size();
        chunk.format = "lte_rrc.bcch_dl_sch_br";
        chunk.timestamp = 1'764'000'000'000'000;
        std::cout << sink.analyse(chunk) << '\n';
        sink.complete();
    } catch (const std::exception& error) {
        std::cerr << "error: " << error.what() << '\n';
        return 1;
    }
}
