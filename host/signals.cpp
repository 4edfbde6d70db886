#include "host/signals.h"

#include <initializer_list>

namespace pendra::host {

namespace {

volatile sig_atomic_t stopFlag = 0;
sigset_t openMask;

void requestStop(int) {
    stopFlag = 1;
}

void ignoreSignal(int) {}

void handle(int signalNumber, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

void installSignals() {
    handle(SIGTERM, requestStop);
    handle(SIGINT, requestStop);
    // Standard output may be a pipe that somebody closed. A handler, unlike SIG_IGN, is not inherited by the scripts.
    handle(SIGPIPE, ignoreSignal);

    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signalNumber : {SIGALRM, SIGTERM, SIGINT}) {
        sigaddset(&blocked, signalNumber);
    }
    sigprocmask(SIG_BLOCK, &blocked, &openMask);
    for (const int signalNumber : {SIGALRM, SIGTERM, SIGINT}) {
        sigdelset(&openMask, signalNumber);
    }
}

const sigset_t& waitMask() {
    return openMask;
}

bool stopRequested() {
    return stopFlag != 0;
}

} // namespace pendra::host
