// What the plug-in says to the operator and others know again: the host's glance at the link, its list of refused loads
// and the grid; and what two of its files say. Each sentence stands here once, under the file that says it.
#pragma once

namespace Ombrey::Phrase {

// src/core/initialisation.cpp
inline constexpr const char* PortMalRéglé = "Erreur de configuration du port de communication";
inline constexpr const char* PortRefusé = "Impossible d'initialiser le port de communication.";
// src/core/plugin.cpp
inline constexpr const char* PasDeConnexion = "Impossible d'établir la connexion avec le RG80.";
// src/link/exchange.cpp
inline constexpr const char* AucunPort = "Aucun port n'est réglé (Station > Configurer le port)";
inline constexpr const char* TitreErreurPort = "Erreur du port";
inline constexpr const char* PortEnErreur = "Erreur du port de communication au RG80.";
inline constexpr const char* AucuneRéponse = "Aucune réponse du RG80.";
inline constexpr const char* Communique = "Communication établie avec le RG80.";
// src/link/collection.cpp, src/link/transmission.cpp
inline constexpr const char* PasPrêt = "Le RG80 n'est pas prêt (NACK).";
// src/link/collection.cpp
inline constexpr const char* RienÀRécupérer = "Aucun chargement à récupérer.";
inline constexpr const char* ChargementAjouté = "ChargementAjouté:";
// src/import/frame_processing.cpp
inline constexpr const char* ChecksumFaux = "Erreur de check-sum";
inline constexpr const char* TropCourt = "Données trop courtes";
inline constexpr const char* TrameEnÉchec = "TraiterDonnéesReçues : ";
inline constexpr const char* DuChargement = "chargement n° ";
inline constexpr const char* ExploitationIntrouvable = "Code exploitation introuvable : /";
// src/import/holding_checks.cpp
inline constexpr const char* TitreExploitation = "Vérification d'exploitation";
inline constexpr const char* CrééParRG80 = "-Crée par le RG80";
// src/import/import_notifications.cpp
inline constexpr const char* NouveauChargement = "Importation d'un nouveau chargement : Site ";
// src/monitor/load_list.cpp
inline constexpr const char* ClasseSanitaire = "Classe sanitaire";
// src/quotas/reply.cpp
inline constexpr const char* Cumuls = "Mise à jour des cumuls : Exploitation : ";
// src/link/transmission.cpp, src/quotas/reply.cpp
inline constexpr const char* EnvoiEnÉchec = "Transmission de l'exportation vers le RG80 : ";

}  // namespace Ombrey::Phrase
