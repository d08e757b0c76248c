// Throughput on the messages of a list: each is constructed from a host string and released,
// through the built library in a stand-in host without a ledger.
#include "bench/construction.h"

int main(int argc, char** argv) {
  return zqv::bench::ThroughputMain(argc, argv, "zqv", "Measures how fast messages are constructed",
                                    zqv::bench::PrepareConstruction);
}
