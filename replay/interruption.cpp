#include "replay/interruption.h"

#include <csignal>

namespace KIVRA::TSHARK::REPLAY {

namespace {

volatile std::sig_atomic_t interruption = 0;

void note_interruption(int /*signal*/) {
    interruption = 1;
}

}  // namespace

void note_interruptions() {
    struct sigaction action {};
    action.sa_handler = note_interruption;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

bool interrupted() {
    return interruption != 0;
}

}  // namespace KIVRA::TSHARK::REPLAY
