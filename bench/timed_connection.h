// A connection with a watch beside it: what the database takes of a dialogue.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/database/connection.h"

namespace Ombrey::Mesures {

using Durée = std::chrono::duration<double>;

/// Adds up how long it lives.
class Montre {
 public:
  explicit Montre(Durée& Somme) : Somme_(Somme) {}
  Montre(const Montre&) = delete;
  Montre& operator=(const Montre&) = delete;
  ~Montre() { Somme_ += std::chrono::steady_clock::now() - Début_; }

 private:
  Durée& Somme_;
  std::chrono::steady_clock::time_point Début_ = std::chrono::steady_clock::now();
};

class ConnexionChronométrée final : public IConnexion {
 public:
  explicit ConnexionChronométrée(std::shared_ptr<IConnexion> Réelle) : Réelle_(std::move(Réelle)) {}
  [[nodiscard]] Durée Passée() const { return Passée_; }

  [[nodiscard]] std::string Nom() const override { return Réelle_->Nom(); }
  [[nodiscard]] std::string Moteur() override { return Réelle_->Moteur(); }
  [[nodiscard]] std::optional<std::filesystem::path> SonFichier() const override { return Réelle_->SonFichier(); }
  [[nodiscard]] bool EstEnLectureSeule() const override { return Réelle_->EstEnLectureSeule(); }
  [[nodiscard]] Instruction Préparer(std::string_view Sql) override {
    const Montre Ici(Passée_);
    return Suivre(Réelle_->Préparer(Sql));
  }
  [[nodiscard]] Instruction PréparerLecture(std::string_view Sql) override {
    const Montre Ici(Passée_);
    return Suivre(Réelle_->PréparerLecture(Sql));
  }
  void ExécuterTout(std::string_view Script) override { Réelle_->ExécuterTout(Script); }
  [[nodiscard]] std::int64_t Insérer(const std::string& Sql, const std::vector<ValeurChamp>& Valeurs,
                                     const std::string& Clé) override {
    const Montre Ici(Passée_);
    return Réelle_->Insérer(Sql, Valeurs, Clé);
  }
  [[nodiscard]] std::string NomsDesTables() const override { return Réelle_->NomsDesTables(); }
  [[nodiscard]] std::vector<ColonneDeTable> ColonnesDe(const std::string& Table) override {
    const Montre Ici(Passée_);
    return Réelle_->ColonnesDe(Table);
  }
  void AjouterColonne(const std::string& Table, const ColonneDeTable& Une) override {
    Réelle_->AjouterColonne(Table, Une);
  }
  void PrendreSite(const std::string& Code) override { Réelle_->PrendreSite(Code); }
  [[nodiscard]] bool ADuNouveau() override { return Réelle_->ADuNouveau(); }
  [[nodiscard]] std::shared_ptr<void> DélaiCommun() override { return Réelle_->DélaiCommun(); }
  void LimiterLeTemps(bool EstPressé) noexcept override { Réelle_->LimiterLeTemps(EstPressé); }
  void FixerPatience(std::function<bool()> Patience) override { Réelle_->FixerPatience(std::move(Patience)); }
  [[nodiscard]] bool EstMêmeNom(const std::string& Un, const std::string& Autre) const override {
    return Réelle_->EstMêmeNom(Un, Autre);
  }
  [[nodiscard]] std::string CléNumérotée(bool Reprise) const override { return Réelle_->CléNumérotée(Reprise); }
  void TenirSommes(const SommesTenues& Sommes) override { Réelle_->TenirSommes(Sommes); }
  void RefaireSommes(const SommesTenues& Sommes) override { Réelle_->RefaireSommes(Sommes); }
  [[nodiscard]] ValeurChamp SommesFausses(const SommesTenues& Sommes) override {
    return Réelle_->SommesFausses(Sommes);
  }
  [[nodiscard]] std::string NombreDans(const std::string& Une) const override { return Réelle_->NombreDans(Une); }
  [[nodiscard]] std::string SansCoupure(const std::string& Une) const override { return Réelle_->SansCoupure(Une); }
  [[nodiscard]] std::string DateLisible(const std::string& Une) const override { return Réelle_->DateLisible(Une); }
  void RangerJournal() override { Réelle_->RangerJournal(); }

 protected:
  void Commencer() override {
    const Montre Ici(Passée_);
    EnCours_.emplace(*Réelle_);
  }
  void Valider() override {
    const Montre Ici(Passée_);
    EnCours_->Valider();
    EnCours_.reset();
  }
  void Annuler() noexcept override { EnCours_.reset(); }

 private:
  class Suivie final : public IInstruction {
   public:
    Suivie(Instruction Réelle, Durée& Somme) : Réelle_(std::move(Réelle)), Somme_(Somme) {}
    void Lier(const std::vector<ValeurChamp>& Valeurs) override { Réelle_.Lier(Valeurs); }
    bool Avancer() override {
      const Montre Ici(Somme_);
      return Réelle_.Avancer();
    }
    [[nodiscard]] ValeurChamp Valeur(std::size_t Rang) const override { return Réelle_.Valeur(Rang); }
    [[nodiscard]] std::vector<std::string> Colonnes() override {
      const Montre Ici(Somme_);
      return Réelle_.Colonnes();
    }

   private:
    Instruction Réelle_;
    Durée& Somme_;
  };
  Instruction Suivre(Instruction Une) { return Instruction(std::make_unique<Suivie>(std::move(Une), Passée_)); }

  std::shared_ptr<IConnexion> Réelle_;
  std::optional<Transaction> EnCours_;
  Durée Passée_{};
};

}  // namespace Ombrey::Mesures
