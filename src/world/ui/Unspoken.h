#pragma once

class QWidget;

// Decoration for the eyes only: assistive technology is told the widget is invisible, so the
// words around it are read without a stray graphic in between.
namespace Unspoken {

void mark(QWidget *widget);

} // namespace Unspoken
