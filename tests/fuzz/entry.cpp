// Where the fuzzer comes in.
#include "tests/fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Données, std::size_t Taille) {
  Ombrey::Essais::Essayer({{reinterpret_cast<const char*>(Données), Taille}});
  return 0;
}
