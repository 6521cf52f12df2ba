// The "vault" module: POST /api/app/vault/<action>.

module vault {
  interface VaultHistoryActionResult {
    error?: string;
    history?: { key: string; label: string; changedAt: string; by: string }[];
  }

  addLoginForRequestAction;
  createCollectionAction;
  createVaultItemAction;
  deleteCollectionAction;
  deleteVaultItemAction;
  loginRequestChoicesAction;
  moveVaultItemAction;
  revealMailAction;
  setCardSpendAction;
  shareForRequestAction;
  updateCollectionAction;
  updateVaultItemAction;
  vaultActivityAction;
  vaultHistoryAction(itemId: string): VaultHistoryActionResult;
  vaultLockAction;
}
