#include "shards/run_shards.h"

int main(int argc, char** argv) { return Quillet::runShards(argc, argv); }
