// The error list as the PDF printer leaves it: its pages read back, letter by letter.
#include <QPrinter>

#include "monitor/error_printout.h"
#include "tests/qt/qt_fixture.h"

namespace Ombrey::Essais {

/// What a PDF of Qt's says in the font that has an E, without blanks.
struct PdfLu {
  QString Texte;
  int Pages = 0, Annoncées = 0;
  int MalPlacées = 0;       ///< letters off the paper, or not behind the one ahead of them
  double MoinsRemplie = 1;  ///< lowest line of the emptiest page, the last one apart, of the page's height
};

PdfLu LirePdf(const std::filesystem::path& Fichier, const QRectF& Papier) {
  const auto Tout = QByteArray::fromStdString(Contenu(Fichier));
  const auto Latin = QString::fromLatin1(Tout);
  QStringList Lettres;
  for (const auto& Police : QRegularExpression("\\[((<\\w{4}> ?)+)\\]\\s+endbfrange").globalMatch(Latin))
    if (Police.captured().contains("<0045>")) Lettres = Police.captured(1).remove('>').split('<', Qt::SkipEmptyParts);
  PdfLu Lu;
  Lu.Annoncées = QRegularExpression("/Count (\\d+)").match(Latin).captured(1).toInt();
  static const QRegularExpression Signe("/(F\\d+) |([\\d.]+) (-?[\\d.]+) Td <(\\w+)> Tj"), Flots("[^d]stream\\r?\\n");
  QString Titre, Police;
  double Bas = 1;
  for (const auto& Flot : Flots.globalMatch(Latin)) {
    if (Tout[Flot.capturedEnd()] != 'x') continue;  // not compressed: a font
    const QByteArray Page = qUncompress(QByteArray(4, '\1') + Tout.mid(Flot.capturedEnd()));
    if (!Page.contains(" Tj")) continue;
    ++Lu.Pages;
    Lu.MoinsRemplie = std::min(Lu.MoinsRemplie, Bas);
    std::pair<double, double> Avant, Place;  // from the top, from the left
    for (const auto& Un : Signe.globalMatch(QString::fromLatin1(Page))) {
      if (Un.hasCaptured(1)) {
        Police = Un.captured(1), Place = {};
        if (Titre.isEmpty()) Titre = Police;
        continue;
      }
      Place = {Place.first - Un.captured(3).toDouble(), Place.second + Un.captured(2).toDouble()};
      Lu.MalPlacées += Place <= Avant || Place.first > Papier.height() || Place.second > Papier.width();
      Avant = Place;
      if (Police != Titre)
        Lu.Texte += QChar(Lettres.value(Un.captured(4).toInt(nullptr, 16) - 1).trimmed().toUShort(nullptr, 16));
    }
    Bas = Avant.first / Papier.height();
  }
  Lu.Texte = Lu.Texte.normalized(QString::NormalizationForm_KC).remove(QRegularExpression("\\s"));
  return Lu;
}

TEST_F(Bureau, FiveHundredErrorsComeOntoTheirPagesEachOnceAndWholeOrItIsSaidThatTheyCannot) {
  LesVraies.OuvrirImprimante()->Imprimer("abandonnée");
  EXPECT_TRUE(std::filesystem::is_empty(Dossier.Chemin()));
  std::deque<std::string> Erreurs;
  QString Attendu;
  for (int Rang = 0; Rang < 500; ++Rang) {
    std::string Erreur = "08:30:00 : Erreur n° " + std::to_string(Rang);
    for (int Fois = Rang % 5 == 0 ? Rang / 3 : Rang % 7 * 4; Fois > 0; --Fois) Erreur += " refusé";
    Attendu.prepend(QString::fromStdString(Erreur).remove(' '));
    Erreurs.push_back(Erreur);
  }
  Dès("Impression des erreurs", [&](QWidget& Boîte) {
    Trace = Le<QTextEdit>(Boîte).toPlainText().toStdString();
    Cadre(Boîte);
  });
  const auto Imprimante = LesVraies.OuvrirImprimante();
  ImprimerErreurs(*Imprimante, {2026, 9, 22, 8, 30, 0}, Erreurs);
  QPrinter Papier(QPrinter::HighResolution);
  Papier.setOutputFormat(QPrinter::PdfFormat);
  const PdfLu Lu = LirePdf(Trace.substr(Trace.find('\n') + 1), Papier.pageRect(QPrinter::DevicePixel));
  EXPECT_EQ(Lu.Texte, Attendu);
  EXPECT_EQ(Lu.MalPlacées, 0);
  EXPECT_EQ(Lu.Pages, Lu.Annoncées) << "a page stays blank";
  EXPECT_GT(Lu.MoinsRemplie, 0.7) << "paper is wasted";
  std::filesystem::remove_all(Dossier.Chemin());
  EXPECT_THROW(Imprimante->TerminerDocument(), ErreurExécution);
}

}  // namespace Ombrey::Essais
