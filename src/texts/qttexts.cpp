// SPDX-License-Identifier: GPL-3.0-or-later
#include "texts/qttexts.h"

#include <cstring>

namespace kel {

namespace {

// The words follow the Swedish desktop's own (Öppna, Spara, Avbryt, Mapp).
constexpr QtText Texts[] = {
    // Standard buttons of dialog button boxes and message boxes.
    {"QPlatformTheme", "OK", "OK"},
    {"QPlatformTheme", "Save", "Spara"},
    {"QPlatformTheme", "Save All", "Spara alla"},
    {"QPlatformTheme", "Open", "Öppna"},
    {"QPlatformTheme", "&Yes", "&Ja"},
    {"QPlatformTheme", "Yes to &All", "Ja till &alla"},
    {"QPlatformTheme", "&No", "&Nej"},
    {"QPlatformTheme", "N&o to All", "N&ej till alla"},
    {"QPlatformTheme", "Abort", "Avbryt"},
    {"QPlatformTheme", "Retry", "Försök igen"},
    {"QPlatformTheme", "Ignore", "Ignorera"},
    {"QPlatformTheme", "Close", "Stäng"},
    {"QPlatformTheme", "Cancel", "Avbryt"},
    {"QPlatformTheme", "Discard", "Förkasta"},
    {"QPlatformTheme", "Help", "Hjälp"},
    {"QPlatformTheme", "Apply", "Verkställ"},
    {"QPlatformTheme", "Reset", "Återställ"},
    {"QPlatformTheme", "Restore Defaults", "Återställ standardvärden"},
    {"QMessageBox", "Show Details...", "Visa detaljer..."},
    {"QMessageBox", "Hide Details...", "Dölj detaljer..."},
    // The file dialog.
    {"QFileDialog", "Look in:", "Leta i:"},
    {"QFileDialog", "Back", "Bakåt"},
    {"QFileDialog", "Forward", "Framåt"},
    {"QFileDialog", "Parent Directory", "Överordnad mapp"},
    {"QFileDialog", "Create New Folder", "Skapa ny mapp"},
    {"QFileDialog", "List View", "Listvy"},
    {"QFileDialog", "Detail View", "Detaljvy"},
    {"QFileDialog", "File &name:", "Fil&namn:"},
    {"QFileDialog", "Files of type:", "Filtyp:"},
    {"QFileDialog", "&Open", "&Öppna"},
    {"QFileDialog", "&Save", "&Spara"},
    {"QFileDialog", "Open", "Öppna"},
    {"QFileDialog", "Save As", "Spara som"},
    {"QFileDialog", "&Choose", "&Välj"},
    {"QFileDialog", "Directory:", "Mapp:"},
    {"QFileDialog", "Directories", "Mappar"},
    {"QFileDialog", "Recent Places", "Senaste platser"},
    {"QFileDialog", "New Folder", "Ny mapp"},
    {"QFileDialog", "&New Folder", "&Ny mapp"},
    {"QFileDialog", "&Rename", "&Byt namn"},
    {"QFileDialog", "&Delete", "&Ta bort"},
    {"QFileDialog", "Show &hidden files", "Visa &dolda filer"},
    {"QFileDialog", "Delete", "Ta bort"},
    {"QFileDialog", "All Files (*)", "Alla filer (*)"},
    {"QFileDialog", "Go back", "Gå bakåt"},
    {"QFileDialog", "Go forward", "Gå framåt"},
    {"QFileDialog", "Go to the parent directory", "Gå till överordnad mapp"},
    {"QFileDialog", "Create a New Folder", "Skapa en ny mapp"},
    {"QFileDialog", "Change to list view mode", "Visa som lista"},
    {"QFileDialog", "Change to detail view mode", "Visa med detaljer"},
    {"QFileDialog", "Sidebar", "Sidopanel"},
    {"QFileDialog", "List of places and bookmarks", "Platser och bokmärken"},
    {"QFileDialog", "Files", "Filer"},
    {"QFileDialog", "Are you sure you want to delete '%1'?", "Vill du ta bort '%1'?"},
    {"QFileDialog", "'%1' is write protected.\nDo you want to delete it anyway?",
     "'%1' är skrivskyddad.\nVill du ta bort den ändå?"},
    {"QFileDialog", "Could not delete directory.", "Mappen kunde inte tas bort."},
    {"QFileDialog", "%1 already exists.\nDo you want to replace it?", "%1 finns redan.\nVill du ersätta den?"},
    {"QFileDialog", "%1\nFile not found.\nPlease verify the correct file name was given.",
     "%1\nFilen hittades inte.\nKontrollera att rätt filnamn angavs."},
    {"QFileDialog", "%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     "%1\nMappen hittades inte.\nKontrollera att rätt mappnamn angavs."},
    {"QFileDialog", "My Computer", "Den här datorn"},
    {"QFileDialog", "Computer", "Dator"},
    // The file list's columns and places.
    {"QFileSystemModel", "Name", "Namn"},
    {"QFileSystemModel", "Size", "Storlek"},
    {"QFileSystemModel", "Type", "Typ"},
    {"QFileSystemModel", "Kind", "Typ"},
    {"QFileSystemModel", "Date Modified", "Ändrad"},
    {"QFileSystemModel", "My Computer", "Den här datorn"},
    {"QFileSystemModel", "Computer", "Dator"},
    {"QFileSystemModel", "%1 TB", "%1 TB"},
    {"QFileSystemModel", "%1 GB", "%1 GB"},
    {"QFileSystemModel", "%1 MB", "%1 MB"},
    {"QFileSystemModel", "%1 KB", "%1 kB"},
    {"QFileSystemModel", "%1 bytes", "%1 byte"},
    {"QFileSystemModel", "Invalid filename", "Ogiltigt filnamn"},
    {"QAbstractFileIconProvider", "Folder", "Mapp"},
    {"QAbstractFileIconProvider", "Drive", "Enhet"},
    {"QAbstractFileIconProvider", "File", "Fil"},
    {"QAbstractFileIconProvider", "%1 File", "%1-fil"},
    {"QAbstractFileIconProvider", "File Folder", "Filmapp"},
    {"QAbstractFileIconProvider", "Shortcut", "Genväg"},
    // Text fields' own menu.
    {"QLineEdit", "&Undo", "&Ångra"},
    {"QLineEdit", "&Redo", "&Gör om"},
    {"QLineEdit", "Cu&t", "Klipp &ut"},
    {"QLineEdit", "&Copy", "&Kopiera"},
    {"QLineEdit", "&Paste", "K&listra in"},
    {"QLineEdit", "Delete", "Ta bort"},
    {"QLineEdit", "Select All", "Markera allt"},
};

} // namespace

std::span<const QtText> qtSwedishTexts()
{
    return Texts;
}

QString QtSwedishCatalogue::translate(const char *context, const char *sourceText, const char *, int) const
{
    if (!context || !sourceText)
        return QString();
    for (const QtText &t : Texts)
        if (std::strcmp(t.context, context) == 0 && std::strcmp(t.english, sourceText) == 0)
            return QString::fromUtf8(t.swedish);
    return QString();
}

} // namespace kel
