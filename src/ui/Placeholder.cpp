// The widgets library grows with the main window; this keeps the target non-empty.
namespace {
[[maybe_unused]] constexpr int uiLibraryPresent = 1;
}
