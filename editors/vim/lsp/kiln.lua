-- For vim.lsp.enable('kiln'), in Neovim 0.11 and later.
return {
  cmd = { 'kiln-lsp' },
  filetypes = { 'kiln', 'kilnproject' },
  root_dir = function(buffer, use) use(vim.fn['kiln#root'](vim.api.nvim_buf_get_name(buffer))) end,
  init_options = { inlayHints = true },
}
