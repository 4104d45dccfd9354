CREATE TABLE Coopérateur (IdCoopérateur TEXT NOT NULL PRIMARY KEY, Nom TEXT NOT NULL DEFAULT '',
  Prénom TEXT NOT NULL DEFAULT '', DateCréation REAL);
INSERT INTO "Coopérateur" VALUES('123','Delmas','',NULL);
CREATE TABLE Groupement (IdGrp TEXT NOT NULL PRIMARY KEY, Nom TEXT NOT NULL DEFAULT '');
CREATE TABLE Métayage (IdMétayage TEXT NOT NULL PRIMARY KEY, Propriétaire TEXT NOT NULL, Récoltant TEXT NOT NULL,
  Part NUMERIC, CodeBadge INTEGER, IdGrp TEXT, Surface NUMERIC);
INSERT INTO "Métayage" VALUES('4','123','123',100,NULL,'7',8);
CREATE TABLE Sélection (IdSélection TEXT NOT NULL PRIMARY KEY, Désignation TEXT NOT NULL DEFAULT '',
  QuotasSurface NUMERIC);
INSERT INTO "Sélection" VALUES('05','Rouge',7500);
CREATE TABLE Cépage (Sélection TEXT NOT NULL, Rang INTEGER NOT NULL, Désignation TEXT NOT NULL
  CONSTRAINT SansPointVirgule CHECK (Désignation NOT GLOB '*[;' || char(1) || '-' || char(31) || char(127) || ']*'),
  PRIMARY KEY (Sélection, Rang));
CREATE TABLE Qualité (IdQualité TEXT NOT NULL PRIMARY KEY, Désignation TEXT NOT NULL DEFAULT '');
CREATE TABLE QuotasGrp (IdGrp TEXT NOT NULL, Sélection TEXT NOT NULL, QuotaJournalier NUMERIC,
  PRIMARY KEY (IdGrp, Sélection));
CREATE TABLE MSysEtats (Titre TEXT NOT NULL, Exportation INTEGER NOT NULL DEFAULT 0, LongChps TEXT, Format TEXT,
  PRIMARY KEY (Titre, Exportation));
INSERT INTO MSysEtats VALUES('Synchronisation des chargements',0,replace('CodeSite	texte	0\rNoChargement	entier	4\rDateCh	date	19\rDateSortie	date	19\rMétayage	texte	6\rSélection	texte	2\rCépage	texte	0\rQualité	texte	2\rDegré	nombre	5\rNoQuai	entier	1\rMasse	entier	4\rCuve	texte	3\rOperateur	texte	10\rRamassage	texte	10\rInfoChargnt1	texte	10\rInfoChargnt2	texte	10\rInfoChargnt3	texte	10\rInfoChargnt4	texte	10','\r',char(13)),';');
CREATE TABLE Paramètre (Nom TEXT NOT NULL PRIMARY KEY, Valeur TEXT NOT NULL DEFAULT ''
  CONSTRAINT SansPointVirgule CHECK (Valeur NOT GLOB '*[;' || char(1) || '-' || char(31) || char(127) || ']*'));
INSERT INTO "Paramètre" VALUES('CodeSite','1');
CREATE TABLE Chargement (IdChargement INTEGER PRIMARY KEY AUTOINCREMENT, CodeSite TEXT NOT NULL, NoChargement INTEGER NOT NULL, DateCh REAL NOT NULL, DateSortie REAL, Métayage TEXT NOT NULL, Sélection TEXT, Cépage TEXT, Qualité TEXT, Degré NUMERIC, NoQuai INTEGER, Masse NUMERIC, Cuve TEXT, Operateur TEXT, Ramassage TEXT, InfoChargnt1 TEXT, InfoChargnt2 TEXT, InfoChargnt3 TEXT, InfoChargnt4 TEXT, Synchronisé INTEGER NOT NULL DEFAULT 0);
INSERT INTO Chargement VALUES(1,'1',12,46287.354166666700621,46287.385416666700622,'4','05','Syrah','01',12.5,2,1234,'7','0','0','0','0','01','0',0);
INSERT INTO Chargement VALUES(2,'1',13,46287.430937500001165,46287.385416666700622,'4','05','Syrah','01',12.5,2,1234,'7','0','0','0','0','01','0',0);
CREATE TABLE ChargementArchive (IdChargement INTEGER PRIMARY KEY, CodeSite TEXT NOT NULL, NoChargement INTEGER NOT NULL, DateCh REAL NOT NULL, DateSortie REAL, Métayage TEXT NOT NULL, Sélection TEXT, Cépage TEXT, Qualité TEXT, Degré NUMERIC, NoQuai INTEGER, Masse NUMERIC, Cuve TEXT, Operateur TEXT, Ramassage TEXT, InfoChargnt1 TEXT, InfoChargnt2 TEXT, InfoChargnt3 TEXT, InfoChargnt4 TEXT, Synchronisé INTEGER NOT NULL DEFAULT 0);
INSERT INTO ChargementArchive VALUES(1,'1',12,46286.354166666700622,46286.385416666700619,'4','05','Syrah','01',12.5,2,1000,'7','0','0','0','0','01','0',0);
CREATE UNIQUE INDEX CoopérateurParNuméro ON Coopérateur (CAST(IdCoopérateur AS INTEGER));
CREATE UNIQUE INDEX GroupementParNuméro ON Groupement (CAST(IdGrp AS INTEGER));
CREATE UNIQUE INDEX MétayageParNuméro ON Métayage (CAST(IdMétayage AS INTEGER));
CREATE INDEX MétayageParPaire ON Métayage (CAST(Propriétaire AS INTEGER), CAST(Récoltant AS INTEGER));
CREATE INDEX MétayageParGroupe ON Métayage (IdGrp);
CREATE INDEX MétayageParBadge ON Métayage (CodeBadge);
CREATE UNIQUE INDEX QuotasGrpParNuméro ON QuotasGrp (CAST(IdGrp AS INTEGER), Sélection);
CREATE UNIQUE INDEX ChargementParNuméro ON Chargement (CodeSite, NoChargement);
CREATE INDEX ChargementParDate ON Chargement (DateCh);
CREATE INDEX ChargementParAppellation ON Chargement (Sélection, DateCh, Métayage, Masse);
CREATE INDEX ChargementParExploitation ON Chargement (Métayage, Sélection, DateCh, Masse);
CREATE INDEX ArchiveParNuméro ON ChargementArchive (CodeSite, NoChargement);
CREATE INDEX ArchiveParAppellation ON ChargementArchive (Sélection, DateCh, Métayage, Masse);
CREATE INDEX ArchiveParExploitation ON ChargementArchive (Métayage, Sélection, DateCh, Masse);
CREATE VIEW ChargementLisible AS
  SELECT CodeSite, NoChargement, strftime('%d/%m/%Y %H:%M', DateCh + 2415018.5) AS Arrivée,
    strftime('%d/%m/%Y %H:%M', DateSortie + 2415018.5) AS Sortie, Métayage, Sélection, Cépage, Qualité, Degré, NoQuai,
    Masse, Cuve, Synchronisé
  FROM Chargement ORDER BY DateCh;
