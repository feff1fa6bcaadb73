// Stands first on the engine's include path: every QtGui and QtWidgets
// header includes this one, so that including any of them stops the build.
#error "the engine (zvengine) is QtCore only: it includes no QtGui or QtWidgets header"
