#include <exception>
#include <iostream>

#include "app/critical_error.h"
#include "app/run.h"

int main(int argc, char** argv) {
  const Quillet::StartUp startUp;
  try {
    Quillet::run(argc, argv);
    return 0;
  } catch (int) {
    // The code that throws a number has already printed a message.
  } catch (const std::exception& exception) {
    std::cerr << "ERROR: " << exception.what() << std::endl;
  } catch (...) {
    std::cerr << "\n Unexpected exception thrown."
              << "\n Please notify the Hallorand group, " << Quillet::contactAddress << '\n'
              << std::endl;
  }
  std::cerr << "\n\nQUILLET is terminating.\n" << std::endl;
  return 1;
}
