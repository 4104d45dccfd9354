// The host's side: what the plug-in calls on Tarvel, and IPlugInTarvel, by which Tarvel drives the plug-in.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "contracts/database.h"
#include "contracts/port.h"

namespace Ombrey {

class IPlateforme;

/// Title of the host's layout by which loads come in.
inline constexpr const char* TitreImport = "Synchronisation des chargements";

/// Receives the host's synchronisation events, on the one thread of the system.
class IÉcouteurKVSynchro {
 public:
  virtual ~IÉcouteurKVSynchro() = default;
  /// Data came in from the site SiteSource, which may be empty.
  virtual void KVSynchro_DonnéesImportées(const std::string& SiteSource) = 0;
};

/// The host's synchronisation object.
class IKVSynchro {
 public:
  virtual ~IKVSynchro() = default;
  /// Code of the site that this station works for; empty when the host has none.
  [[nodiscard]] virtual std::string CodeSiteCourant() = 0;
  /// Connects the listener that gets the events from now on, instead of the one before. It isn't owned.
  virtual void Connecter(IÉcouteurKVSynchro* Écouteur) = 0;
  /// Disconnects the listener; one that has been connected in its place stays.
  virtual void Déconnecter(const IÉcouteurKVSynchro* Écouteur) = 0;
};

/// Receives the events of the host's import engine, in the course of TableImporter or whenever the host changes a load.
class IÉcouteurEtatBdD {
 public:
  virtual ~IÉcouteurEtatBdD() = default;
  /// A record was added. RecSet stands on it, is only read, and lives until the call returns.
  virtual void EtatBdD_EnregistrementImporté(const std::string& Table, IRecordset& RecSet) = 0;
  /// A record was changed; the arguments as above.
  virtual void EtatBdD_EnregistrementMisAJour(const std::string& Table, IRecordset& RecSet) = 0;
};

/// The host's state object, with its import engine.
class IEtatBdD {
 public:
  virtual ~IEtatBdD() = default;
  [[nodiscard]] virtual std::shared_ptr<IKVSynchro> KVSynchro() = 0;
  /// What went wrong in the last import, as a French sentence; empty when nothing did.
  [[nodiscard]] virtual std::string DernièreErreur() = 0;
  /// Imports the file by the layout named Titre. True only when all of it is durably in the database; false or a
  /// text in DernièreErreur means that something isn't. Drapeau isn't used by the plug-in: false in, any value out.
  /// Events come while it runs. May raise ErreurExécution.
  virtual bool TableImporter(const std::string& Titre, const std::string& Fichier, bool& Drapeau) = 0;
  /// Fills Dossier, which ends with the path separator, and Nom, the import file's name without "RG80 " in front.
  virtual std::string ObtenirFichierImport(std::string& Dossier, std::string& Nom) = 0;
  /// As those of IKVSynchro.
  virtual void Connecter(IÉcouteurEtatBdD* Écouteur) = 0;
  virtual void Déconnecter(const IÉcouteurEtatBdD* Écouteur) = 0;
};

/// A cooperator to be created. Only these three are ever set.
struct NouveauCoopérateur {
  std::string IdCoopérateur;
  std::string Nom;
  std::string Horodatage;  ///< date and time of the creation, in the regional text form
};

/// The host's database object. Codes are numbers held as text.
class IBaseDeD {
 public:
  virtual ~IBaseDeD() = default;
  [[nodiscard]] virtual std::shared_ptr<IEtatBdD> EtatBdD() = 0;
  [[nodiscard]] virtual std::shared_ptr<IKVSynchro> KVSynchro() = 0;
  /// The open database; it stays the host's.
  [[nodiscard]] virtual std::shared_ptr<IDatabase> BaseDAO() = 0;
  /// Called once the port is open. Drapeau is an out flag that nobody reads.
  virtual void ActiverBase(bool& Drapeau) = 0;
  /// Called behind the figures of a load: the host brings its own view up to date.
  virtual void Actualiser() = 0;
  /// Grape varieties of an appellation, one on a line, lines separated by CR. The first argument is left out by the
  /// plug-in; PremierSeul is always true.
  [[nodiscard]] virtual std::string ListeCépages(std::optional<std::string> Filtre, std::string& Sélection,
                                                 bool PremierSeul) = 0;
  /// These two create a row. A negative result is a refusal that TexteErreurBase words. They raise ErreurExécution when
  /// the database can't be written: the load is offered again.
  virtual std::int16_t AjouterCoopérateur(NouveauCoopérateur& Nouveau) = 0;
  /// Code is "0" on entry and holds the new holding's IdMétayage when the call worked.
  virtual std::int16_t AjouterMétayage(const std::string& Propriétaire, const std::string& Récoltant, std::string& Code,
                                       const std::string& Part, const std::string& Groupe,
                                       const std::string& Badge) = 0;
  [[nodiscard]] virtual std::string TexteErreurBase(std::int16_t Erreur) = 0;
  /// The running figures, whole numbers. 999999 says that there is no quota. May raise ErreurExécution.
  [[nodiscard]] virtual std::int32_t CalculerRestantExploit(std::string& IdMétayage, std::string& Cépage,
                                                            std::string& Sélection, std::string& Qualité,
                                                            std::optional<double> Du, std::optional<double> Au) = 0;
  [[nodiscard]] virtual std::int32_t CalculerCumulGroupe(std::string Groupe, std::string Métayage, std::string Cépage,
                                                         std::string Sélection) = 0;
  /// Jour is a date without a time of day, in days since 1899-12-30.
  [[nodiscard]] virtual std::int32_t CalculerRestantGroupe(std::string& Groupe, std::string& Cépage,
                                                           std::string& Sélection, std::string& Qualité,
                                                           std::optional<double> Jour, std::optional<double> Au) = 0;
};

/// The host's call-back object.
class IEventPlugin {
 public:
  virtual ~IEventPlugin() = default;
  /// Takes note of a text.
  virtual void Signaler(const std::string& Texte) = 0;
};

/// An object of the host's tools library that the plug-in makes, sets and closes; nothing is relied on.
class IAccèsDistant {
 public:
  virtual ~IAccèsDistant() = default;
  virtual void Paramétrer(const std::string& Texte) = 0;
  virtual void Fermer() = 0;
};

/// How the host drives a plug-in. The order of calls: FichierTarvelIni and BaseDeD, ServeurPortComm if the host offers
/// one, Initialiser, Afficher, the buttons and menus as they come, Terminer. All on one thread; Terminer may come while
/// another call waits. Where no other word is said, an operation raises nothing.
class IPlugInTarvel {
 public:
  virtual ~IPlugInTarvel() = default;
  [[nodiscard]] virtual std::string IPlugInTarvel_Nom() const = 0;
  [[nodiscard]] virtual std::string IPlugInTarvel_Version() const = 0;
  /// The host offers a toolbar number. True: the plug-in takes it, its picture stands on the clipboard and
  /// ToolTipText is set. False: nothing was touched. The plug-in keeps the first number that isn't 0.
  virtual bool IPlugInTarvel_AjouterBouton(std::uint8_t NumBouton, std::int16_t& Style, std::string& ToolTipText) = 0;
  /// The same for a menu number and the entry's text, in which "&" stands ahead of the mnemonic letter.
  virtual bool IPlugInTarvel_AjouterMenu(std::uint8_t NumMenu, std::string& Texte) = 0;
  /// A toolbar button was pressed; another number than the plug-in's own does nothing. May raise ErreurExécution.
  virtual void IPlugInTarvel_BoutonBarreOutilsAppelé(std::int16_t Num, const std::string& Inutilisé) = 0;
  /// A menu entry was chosen; likewise.
  virtual void IPlugInTarvel_MenuAppelé(std::int16_t Num, const std::string& Inutilisé) = 0;
  [[nodiscard]] virtual std::shared_ptr<IBaseDeD> IPlugInTarvel_BaseDeD() const = 0;
  virtual void IPlugInTarvel_FixerBaseDeD(std::shared_ptr<IBaseDeD> Objet) = 0;
  /// Always no object.
  [[nodiscard]] virtual std::shared_ptr<IServeurPortComm> IPlugInTarvel_ServeurPortComm() const = 0;
  virtual void IPlugInTarvel_FixerServeurPortComm(std::shared_ptr<IServeurPortComm> Objet) = 0;
  /// Always no object; what is set is ignored.
  [[nodiscard]] virtual std::shared_ptr<void> IPlugInTarvel_EntreesSorties() const = 0;
  virtual void IPlugInTarvel_FixerEntreesSorties(std::shared_ptr<void> Objet) = 0;
  /// Path of the settings file, in UTF-8.
  virtual void IPlugInTarvel_FixerFichierTarvelIni(const std::string& Chemin) = 0;
  /// Empty on success, else the reason. Raises ErreurExécution when a port setting is no number.
  virtual std::string IPlugInTarvel_Initialiser(std::shared_ptr<IEventPlugin> EventPlugin) = 0;
  /// Starts the link; shows nothing.
  virtual void IPlugInTarvel_Afficher() = 0;
  /// Has the operator change the port's settings; they count from the next Initialiser. May raise ErreurExécution.
  virtual void IPlugInTarvel_Configurer() = 0;
  /// Ends the plug-in; a second call does no harm. Always the empty text.
  virtual std::string IPlugInTarvel_Terminer() = 0;
  virtual void IPlugInTarvel_Information(std::string& Texte) = 0;
  /// A load was added by somebody; the arguments aren't read.
  virtual void IPlugInTarvel_ChargementAjouté(const std::string& CodeSite, const std::string& NumCharg) = 0;
};

/// One more whenever an interface of these headers changes: host and plug-in understand each other only when they were
/// built with the same one.
inline constexpr int VersionContrat = 2;
/// The one symbol that the plug-in's library exports is this name with VersionContrat behind it: fills PlugIn with a
/// new plug-in that works on Plateforme, which must outlive it. Raises what Plateforme raises, and there is no plug-in
/// then.
inline constexpr const char* NomFabrique = "PlgInOmbrey_CreerPlugIn_";
using FabriquePlugIn = void (*)(IPlateforme& Plateforme, std::shared_ptr<IPlugInTarvel>& PlugIn);

}  // namespace Ombrey
