#include "kalimkit/ui/view/Responder.h"

namespace kalim::ui {

Responder::~Responder() = default;

void Responder::touchesBegan(const TouchEvent& event) {
    if (Responder* next = nextResponder()) next->touchesBegan(event);
}

void Responder::touchesMoved(const TouchEvent& event) {
    if (Responder* next = nextResponder()) next->touchesMoved(event);
}

void Responder::touchesEnded(const TouchEvent& event) {
    if (Responder* next = nextResponder()) next->touchesEnded(event);
}

void Responder::touchesCancelled(const TouchEvent& event) {
    if (Responder* next = nextResponder()) next->touchesCancelled(event);
}

}  // namespace kalim::ui
