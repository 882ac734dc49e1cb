// SPDX-License-Identifier: Apache-2.0
#include <core/context/context_extern.h>
#include <core/runtime/process.h>

namespace core {

ContextDefExternBase::ContextDefExternBase(const GUID* clsid) {
    if (!(*clsid == kNullGuid))
        def_ = create_object<IContextDef>(*clsid);
}

int ContextDefExternBase::getNProps() const {
    return def_ ? def_->getNProps() : 0;
}

const wchar* ContextDefExternBase::getPropName(int prop, int alias) const {
    return def_ ? def_->getPropName(prop, alias) : nullptr;
}

bool ContextDefExternBase::isPropReadable(int prop) const {
    return def_ && def_->isPropReadable(prop);
}

bool ContextDefExternBase::isPropWritable(int prop) const {
    return def_ && def_->isPropWritable(prop);
}

int ContextDefExternBase::findProp(const wchar* name) const {
    return def_ ? def_->findProp(name) : -1;
}

int ContextDefExternBase::getNMethods() const {
    return def_ ? def_->getNMethods() : 0;
}

const wchar* ContextDefExternBase::getMethodName(int method, int alias) const {
    return def_ ? def_->getMethodName(method, alias) : nullptr;
}

int ContextDefExternBase::getNParams(int method) const {
    return def_ ? def_->getNParams(method) : 0;
}

bool ContextDefExternBase::isParamIn(int method, int param) const {
    return !def_ || def_->isParamIn(method, param);
}

bool ContextDefExternBase::isParamOut(int method, int param) const {
    return def_ && def_->isParamOut(method, param);
}

bool ContextDefExternBase::getParamDefValue(int method, int param, GenericValue* out) const {
    return def_ && def_->getParamDefValue(method, param, out);
}

bool ContextDefExternBase::hasRetVal(int method) const {
    return def_ && def_->hasRetVal(method);
}

int ContextDefExternBase::findMethod(const wchar* name) const {
    return def_ ? def_->findMethod(name) : -1;
}

} // namespace core
