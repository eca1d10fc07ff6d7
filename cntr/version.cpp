#include <cntr/version.h>

const char* xf_CntrVersion() {
    return CNTR_VERSION_STRING;
}
