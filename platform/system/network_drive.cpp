// Drives that other machines write to as well.
#include "platform/system/network_drive.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string_view>

namespace Ombrey {
namespace {

/// Their names in the list of mounts. Folders that a virtual machine has from its host (9p, virtiofs, vboxsf) aren't
/// among them: a container's own root may be one.
constexpr std::string_view Réseaux[] = {
    "nfs",   "nfs4",           "cifs",      "smb3",        "smbfs",         "ncpfs",          "afs",
    "ceph",  "fuse.ceph-fuse", "glusterfs", "lustre",      "coda",          "fuse.sshfs",     "fuse.glusterfs",
    "davfs", "fuse.rclone",    "fuse.s3fs", "fuse.davfs2", "fuse.smbnetfs", "fuse.curlftpfs", "fuse.gvfsd-fuse",
};

}  // namespace

std::string DisqueRéseau(std::filesystem::path Fichier, const std::filesystem::path& Montages) {
  struct stat État {};
  while (stat(Fichier.c_str(), &État) != 0) {
    if (!Fichier.has_relative_path()) return {};
    Fichier = Fichier.parent_path();
  }
  const std::string Appareil = std::to_string(major(État.st_dev)) + ":" + std::to_string(minor(État.st_dev));
  std::ifstream Liste(Montages);
  for (std::string Ligne; std::getline(Liste, Ligne);) {
    // "id parent device root place options… - kind source options"
    const std::size_t Genre = Ligne.find(" - ");
    std::istringstream Mots(Ligne);
    std::string Numéro, Parent, Lu, Sorte;
    Mots >> Numéro >> Parent >> Lu;
    if (Lu != Appareil || Genre == std::string::npos) continue;
    std::istringstream(Ligne.substr(Genre + 3)) >> Sorte;
    return std::ranges::find(Réseaux, Sorte) == std::end(Réseaux) ? "" : Sorte;
  }
  return {};
}

}  // namespace Ombrey
