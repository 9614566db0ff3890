/* Prints the library's version as a program in C sees it. */
#include <stdio.h>

extern const unsigned char KalimKitDylibFrameworkVersionString[];
extern const double KalimKitDylibFrameworkVersionNumber;

int main(void) {
    printf("%s %g\n", (const char*)KalimKitDylibFrameworkVersionString,
           KalimKitDylibFrameworkVersionNumber);
    return 0;
}
