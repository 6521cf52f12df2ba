// The "settings" module: POST /api/app/settings/<action>.

module settings {
  settings;
  vault;
}
