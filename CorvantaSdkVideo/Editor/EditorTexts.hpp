#pragma once

namespace corvanta {

/// Installs the editor's texts in the application for good, in the first language of QLocale's that there are
/// texts for; when that has changed since, those. English is what the texts are written in, and what every
/// other language gets. On the Qt thread.
void installEditorTexts();

} // namespace corvanta
