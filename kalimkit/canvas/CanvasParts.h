#pragma once

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasByKeys.h"
#include "kalimkit/canvas/CanvasContent.h"
#include "kalimkit/canvas/CanvasDocument.h"
#include "kalimkit/canvas/CanvasExport.h"
#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasGrip.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasJournal.h"
#include "kalimkit/canvas/CanvasPainter.h"
#include "kalimkit/canvas/CanvasPen.h"
#include "kalimkit/canvas/CanvasRestyling.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasSpeech.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"

namespace kalim {

// All that a canvas is made of. They name each other before they are made, and use each other only
// afterwards.
struct CanvasParts {
    CanvasParts(ZoomedCanvasView& view, CanvasShown& shown)
        : home(view, screen),
          tools(shown),
          content({tools, shown, screen}),
          painter({tools.list(), shown, content}),
          screen({view, shown, tools, painter, selection}),
          selection({home, tools, finger, freehand, arrangement, restyling}),
          freehand({home, tools, finger}),
          typing({home, shown, tools, screen, selection, finger}),
          grip({home, shown, tools, screen, selection}),
          finger({home, tools, screen, selection, typing, freehand, history, grip, arrangement}),
          history({home, tools, content, screen, selection, typing, freehand, finger, journal,
                   arrangement, restyling}),
          arrangement({home, shown, tools, selection, typing, finger, history, document}),
          restyling({home, tools, screen, selection}),
          pen({home, tools, screen, selection, typing, freehand, finger, journal, restyling}),
          exports({view, shown, content, painter, screen, selection, typing, finger, history}),
          document({home, shown, tools, content, painter, typing, exports}),
          journal({tools, content, typing, document, history}),
          speech({home, tools, selection, typing, finger}),
          byKeys({home, tools, selection, finger, arrangement, speech}) {}

    CanvasHome home;
    CanvasTools tools;
    CanvasContent content;
    CanvasPainter painter;
    CanvasScreen screen;
    CanvasSelection selection;
    CanvasFreehand freehand;
    CanvasTyping typing;
    CanvasGrip grip;
    CanvasFinger finger;
    CanvasHistory history;
    CanvasArrangement arrangement;
    CanvasRestyling restyling;
    CanvasPen pen;
    CanvasExport exports;
    CanvasDocument document;
    CanvasJournal journal;
    CanvasSpeech speech;
    CanvasByKeys byKeys;
};

}  // namespace kalim
