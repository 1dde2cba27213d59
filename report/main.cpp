#include "report/run.h"

int main(int argc, char** argv) { return Quillet::runReport(argc, argv); }
