#include "app/critical_error.h"

#include <csignal>
#include <cstdlib>
#include <iostream>

namespace Quillet {

void criticalErrorHandler(int signalNumber) {
  constexpr const char* rule =
      "\n--------------------------------------------------------------------";
  std::cerr << rule << "\n A critical error has occurred.                                     "
            << "\n Please notify the Hallorand group, " << contactAddress << ' ' << rule << '\n'
            << std::endl;
  std::exit(signalNumber);
}

StartUp::StartUp() {
  std::signal(SIGSEGV, criticalErrorHandler);
  std::signal(SIGBUS, criticalErrorHandler);
}

}  // namespace Quillet
