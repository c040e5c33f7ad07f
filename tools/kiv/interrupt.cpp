#include "interrupt.h"

#include <csignal>

namespace {

// A signal handler reaches nothing but objects of static storage.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void remember_interrupt(int signal) {
    interrupted = 1;
    std::signal(signal, SIG_DFL);
}

}  // namespace

void catch_interrupts() {
    std::signal(SIGINT, remember_interrupt);
    std::signal(SIGTERM, remember_interrupt);
#ifdef SIGBREAK
    std::signal(SIGBREAK, remember_interrupt);  // Ctrl-Break, of the consoles that have such a key
#endif
}

bool is_interrupted() { return interrupted != 0; }
