// The "guides" module: POST /api/app/guides/<action>.

module guides {
  search;
}
