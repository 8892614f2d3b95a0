#include "app/commandline/CommandLineHelp.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

/// The lines below a heading, up to an empty one.
QStringList Section(const QString& heading) {
    const QStringList lines = CommandLineHelp().split(u'\n');
    const qsizetype first = lines.indexOf(heading) + 1;
    return first == 0 ? QStringList() : lines.mid(first, lines.indexOf(QString(), first) - first);
}

/// Each with the lines that are further in below it.
QStringList Entries(const QStringList& lines) {
    QStringList entries;
    for (const QString& line : lines) {
        if (line.startsWith(u"   ") && !entries.isEmpty()) {
            entries.last() += u'\n' + line;
        } else {
            entries.append(line);
        }
    }
    return entries;
}

QStringList OptionsOf(const QString& command) {
    return Entries(Section(u"Optionen von „%1“:"_s.arg(command)));
}

/// Those that another command has too stand as that command describes them.
QStringList WholeOptionsOf(const QString& command) {
    QStringList options;
    for (const QString& option : OptionsOf(command)) {
        if (!option.endsWith(u"wie bei „sheet“")) {
            options.append(option);
            continue;
        }
        const QStringList shared = option.split(u' ').replaceInStrings(u","_s, QString());
        for (const QString& described : OptionsOf(u"sheet"_s)) {
            if (shared.contains(described.trimmed().section(u' ', 0, 0))) {
                options.append(described);
            }
        }
    }
    return options;
}

}  // namespace

// Long, for it is one text.
QString CommandLineHelp() {
    return uR"(Aufruf:
  kadrona [--new-window] [--open | FOTO]
      öffnet ein Fenster, auf Wunsch gleich mit einem Foto oder dem Dialog, der
      eines öffnet (--open). Ein Foto bekommt das Fenster, das schon läuft, es
      sei denn, --new-window verlangt ein weiteres. Vor Namen, die mit „-“
      beginnen, steht „--“.
  kadrona sheet FOTO... --template NAME --out DATEI|ORDNER [Optionen]
      macht aus jedem Foto einen Bogen Passbilder, ohne Fenster. FOTO darf auch
      ein Ordner sein; mehrere Fotos brauchen einen Ordner als Ziel.
  kadrona sheet --order DATEI --out DATEI|ORDNER [--paper PAPIER] [Optionen]
      macht ein Sammelblatt. Jede Zeile des Auftrags nennt ein Bild:
      FOTO; SCHABLONE; auto oder LINKS,OBEN,BREITE; ANZAHL
  kadrona photo FOTO... --template NAME --out DATEI|ORDNER [Optionen]
      macht aus jedem Foto eine Bilddatei für einen Online-Antrag (JPEG).
  kadrona check FOTO... --template NAME [--at LINKS,OBEN,BREITE | --auto]
          [--json] [--strict]
      prüft jedes Foto an den Vorgaben der Schablone, ohne Fenster.
  kadrona archive backup --out ORDNER [--folder ARCHIV]
      sichert das Bildarchiv, auch während es benutzt wird.
  kadrona archive check [--folder ARCHIV]
      vergleicht Datensätze, Fotos und Prüfsummen und nennt, was nicht stimmt.
  kadrona archive rebuild [--folder ARCHIV]
      legt verlorene Datensätze aus den Schlüsselworten in den Fotos wieder an.
  kadrona archive export --search TEXT --out ORDNER [--folder ARCHIV]
      kopiert alles, was die Suche findet, mit seinen Daten (JSON, CSV).
  kadrona archive transfer
      überträgt die Datenbank dieses Rechners auf den Server der Einstellungen.

Optionen von „sheet“:
  --template NAME         Schablone, wie sie im Programm heißt
  --out DATEI|ORDNER      Ziel; die Endung bestimmt das Format
                          (.jpg .jpeg .jp2 .png .bmp .tif .tiff .pdf)
  --layout "2 x 4"        Aufteilung des Bogens; sonst die des Profils
  --at LINKS,OBEN,BREITE  Lage der Schablone in Pixeln des Fotos; sonst die
                          für Fotos dieser Größe gespeicherte
  --auto                  Lage der Schablone am Gesicht; Fotos ohne Gesicht
                          werden genannt, die anderen gemacht
  --profile NAME          Einstellungsprofil; sonst „Standard Profile“
  --paper PAPIER          Blatt auf Papier statt des bloßen Bogens: 10x15, 13x18,
                          100x148, A6, A5, A4 oder BREITExHÖHE in Millimetern
  --count ANZAHL|fill     Bilder auf dem Papier, „fill“ so viele wie passen;
                          sonst die der Aufteilung
  --gap MM, --edge MM     Abstand zwischen den Bildern, bis 20, und Rand; sonst 2
                          und 3
  --marks MARKEN          Schneidemarken: none, corners, lines oder outline
  --dpi DPI               Auflösung des Blatts; sonst die des Fotos

Optionen von „photo“:
  --template, --at, --auto  wie bei „sheet“
  --out DATEI|ORDNER      Ziel, eine JPEG-Datei
  --pixels BREITExHÖHE    genaue Größe der Datei; sonst die der Schablone
  --kilobytes MIN-MAX     Größe in Kilobyte zu 1000 Bytes; sonst die der
                          Schablone

Optionen von „check“:
  --template, --at, --auto  wie bei „sheet“
  --json                  ein Objekt je Foto, bei mehreren eine Liste; das
                          eines unlesbaren nennt dazu den Grund („error“)
  --strict                Ergebnis 3, wenn etwas nicht erfüllt ist; 1, wo kein
                          Gesicht gesucht werden konnte

Optionen von „archive“:
  --folder ARCHIV         Ordner des Bildarchivs; sonst der der
                          Einstellungen. „check“ sieht einen anderen nur an
  --out ORDNER            Ziel; das einer Sicherung ist leer oder eine ältere
  --search TEXT           Suche wie im Fenster „Bild Archiv“

  --help                  zeigt diese Hilfe
  --version               zeigt die Fassung

Ergebnis: 0 alles erledigt, 1 mindestens ein Foto ging nicht, 2 falscher Aufruf,
3 „check --strict“ oder „archive check“ hat etwas gefunden.
)"_s;
}

QString HelpOf(const QString& command) {
    const QStringList calls =
        Entries(Section(u"Aufruf:"_s)).filter(u"  kadrona %1 "_s.arg(command));
    return u"Aufruf:\n%1\n\nOptionen:\n%2\n\nAlles übrige zeigt kadrona --help.\n"_s.arg(
        calls.join(u'\n'), WholeOptionsOf(command).join(u'\n'));
}

}  // namespace kadrona::app
