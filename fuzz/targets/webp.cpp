#include "fuzz/Decoding.h"

KALIM_FUZZ(webp, input) {
    kalim::fuzz::readPicture(input);
}
