// A program at the other end of pipes: does what its first argument says.
#include <cstdlib>
#include <future>
#include <iostream>
#include <string>
#include <string_view>

namespace {

/// Gives back what it reads, piece by piece up to each semicolon.
void echo() {
    for (std::string piece; std::getline(std::cin, piece, ';');) {
        std::cout << piece << ';' << std::flush;
    }
}

/// Writes before it reads, and then tells how much it has read.
void flood(std::size_t size) {
    std::cout << std::string(size, 'f') << std::flush;
    std::size_t count = 0;
    for (std::string piece; std::getline(std::cin, piece, ';');) {
        count += piece.size() + 1;
    }
    std::cout << ';' << count;
}

/// Neither reads nor ends.
[[noreturn]] void stay() {
    std::promise<void>().get_future().wait();
    std::abort();
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view task = arguments[1];
    if (task == "echo") {
        echo();
    } else if (task == "flood") {
        flood(std::stoul(arguments[2]));
    } else if (task == "list") {
        for (int i = 2; i < count; ++i) {
            std::cout << arguments[i] << ';';
        }
    } else if (task == "stay") {
        std::cout << "here;" << std::flush;
        stay();
    } else if (task == "fail") {
        std::cerr << "a complaint";
        return 7;
    }
    // All else: ends at once.
}
