#include "fuzz/Decoding.h"

KALIM_FUZZ(jpeg, input) {
    kalim::fuzz::readPicture(input);
}
