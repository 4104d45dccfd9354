// The host in memory.
#include "tests/support/fake_host.h"

#include <fstream>
#include <iterator>

namespace Ombrey::Essais {

bool FauxEtatBdD::TableImporter(const std::string&, const std::string& Fichier, bool&) {
  std::ifstream Flux(Fichier, std::ios::binary);
  Importés.emplace_back(std::istreambuf_iterator<char>(Flux), std::istreambuf_iterator<char>());
  if (PendantImport) PendantImport();
  if (Lève) throw ErreurExécution("la base ne répond pas");
  return Importe;
}

}  // namespace Ombrey::Essais
