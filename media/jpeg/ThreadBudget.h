#pragma once

namespace tavren::jpeg {

// How many threads an encoding step should use. A second thread only pays when a core is free
// to run it: on a machine other programs keep busy it mostly waits for its turn, and the step
// then waits for it.
class ThreadBudget {
  public:
    // Up to `most` threads (at least 1): the processor's cores, fewer while the system load
    // (other than the caller's own running thread) leaves less than half a core free.
    static int Available(int most);
};

}  // namespace tavren::jpeg
