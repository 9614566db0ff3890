#pragma once

namespace kalim::test {

// What the n-th call from now on does, of those that ask the system for memory or change a file:
// it fails as the system would. Counts on after that; 0 lets all succeed.
void failAllocation(long number);
void failFileCall(long number, int error);
// How many there were since then.
long allocations();
long fileCalls();

}  // namespace kalim::test
