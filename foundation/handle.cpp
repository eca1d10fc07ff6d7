#include <foundation/handle.h>

xcRepBase::~xcRepBase() = default;
