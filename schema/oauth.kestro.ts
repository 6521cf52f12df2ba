// The "oauth" module: POST /api/app/oauth/<action>.

module oauth {
  connections;
  revokeConnection;
}
